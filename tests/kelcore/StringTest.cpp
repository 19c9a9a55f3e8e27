#include <string>

#include <gtest/gtest.h>

#include <kelcore/string/String.h>

namespace {

using kelcore::string::ReplaceInString;
using kelcore::string::StdToUTF16String;
using kelcore::string::StdToUTF8String;
using kelcore::string::string;
using kelcore::string::UTF16toStdString;

TEST(String, Utf8RoundTripsThroughUtf16) {
    const std::string text = "Clip 2 — Ärger ΑΛΦΑ 日本 \xF0\x9F\x98\x80 end";
    EXPECT_EQ(UTF16toStdString(StdToUTF16String(text)), text);
}

TEST(String, CharacterOutsideTheBmpBecomesASurrogatePair) {
    const string utf16 = StdToUTF16String("\xF0\x9F\x98\x80");  // U+1F600
    ASSERT_EQ(utf16.size(), 2u);
    EXPECT_EQ(utf16[0], 0xD83D);
    EXPECT_EQ(utf16[1], 0xDE00);
    EXPECT_EQ(UTF16toStdString(utf16), "\xF0\x9F\x98\x80");
}

TEST(String, Utf16RoundTripsThroughUtf8) {
    const string text = u"a\u00E4\u4E2D\U0001F600\U00010400z";
    EXPECT_TRUE(StdToUTF16String(UTF16toStdString(text)) == text);
}

TEST(String, InvalidUtf8BytesAreDropped) {
    EXPECT_TRUE(StdToUTF16String("a\xFF"
                                 "b") == u"ab");
    EXPECT_TRUE(StdToUTF16String("a\x80"
                                 "b") == u"ab");
}

TEST(String, TruncatedUtf8SequenceKeepsTheCharacterAfterIt) {
    EXPECT_TRUE(StdToUTF16String("a\xC3"
                                 "b") == u"ab");
    EXPECT_TRUE(StdToUTF16String("a\xE2\x82"
                                 "b") == u"ab");
    EXPECT_EQ(StdToUTF8String("a\xE2\x82"
                              "b"),
              "ab");
}

TEST(String, TruncatedUtf8SequenceAtTheEndIsDropped) {
    EXPECT_TRUE(StdToUTF16String("ab\xE2\x82") == u"ab");
    EXPECT_TRUE(StdToUTF16String("ab\xF0\x9F\x98") == u"ab");
}

TEST(String, OverlongUtf8IsDropped) {
    EXPECT_TRUE(StdToUTF16String("a\xC0\xAF"
                                 "b") == u"ab");
}

TEST(String, LoneSurrogatesAreDroppedOnTheWayToUtf8) {
    const char16_t highAlone[] = {u'a', 0xD83D, u'b', 0};
    const char16_t lowAlone[] = {u'a', 0xDE00, u'b', 0};
    const char16_t highAtEnd[] = {u'a', 0xD83D, 0};
    EXPECT_EQ(UTF16toStdString(highAlone), "ab");
    EXPECT_EQ(UTF16toStdString(lowAlone), "ab");
    EXPECT_EQ(UTF16toStdString(highAtEnd), "a");
}

TEST(String, StdToUtf8KeepsValidTextAndDropsInvalidBytes) {
    EXPECT_EQ(StdToUTF8String("Ärger \xF0\x9F\x98\x80"), "Ärger \xF0\x9F\x98\x80");
    EXPECT_EQ(StdToUTF8String("a\xFF"
                              "b\xC3"),
              "ab");
}

TEST(String, EmptyTextConvertsToEmptyText) {
    EXPECT_TRUE(StdToUTF16String("").empty());
    EXPECT_TRUE(UTF16toStdString(u"").empty());
}

TEST(String, ReplacesEachPlaceholderByItsArgument) {
    EXPECT_TRUE(ReplaceInString(u"@1 of @0 (@2)", u"10", u"3", u"clip") == u"3 of 10 (clip)");
}

TEST(String, ReplacesEveryOccurrenceOfARepeatedPlaceholder) {
    EXPECT_TRUE(ReplaceInString(u"@0, @0 and @0", u"x") == u"x, x and x");
}

TEST(String, MissingArgumentsReplaceByNothing) {
    EXPECT_TRUE(ReplaceInString(u"[@0|@1|@2]", u"a") == u"[a||]");
}

TEST(String, UnknownPlaceholdersStayAsTheyAre) {
    EXPECT_TRUE(ReplaceInString(u"@3 @9 @a @@0", u"x") == u"@3 @9 @a @x");
}

TEST(String, AtSignAtTheEndStays) {
    EXPECT_TRUE(ReplaceInString(u"mail me @", u"x") == u"mail me @");
    EXPECT_TRUE(ReplaceInString(u"@", u"x") == u"@");
}

TEST(String, InsertedTextIsNotScannedAgain) {
    EXPECT_TRUE(ReplaceInString(u"@0 @1", u"@1", u"y") == u"@1 y");
}

}  // namespace
