#include <sstream>
#include <string>
#include <unordered_set>

#include <gtest/gtest.h>

#include <kelcore/utility/Guid.h>

namespace {

using kelcore::utility::Guid;

constexpr const char* kText = "0123abcd-4567-89ef-aBcD-0123456789Ef";

TEST(Guid, DefaultIsNil) {
    EXPECT_TRUE(Guid().IsNil());
    EXPECT_EQ(Guid().AsStdString(), "00000000-0000-0000-0000-000000000000");
}

TEST(Guid, ParsesCanonicalTextInAnyCase) {
    const Guid guid{std::string_view(kText)};
    EXPECT_EQ(guid.High(), 0x0123abcd456789efULL);
    EXPECT_EQ(guid.Low(), 0xabcd0123456789efULL);
    EXPECT_EQ(guid.AsStdString(), "0123abcd-4567-89ef-abcd-0123456789ef");
}

TEST(Guid, ParsesTextInBraces) {
    EXPECT_EQ(Guid(std::string_view("{0123abcd-4567-89ef-abcd-0123456789ef}")),
              Guid(std::string_view(kText)));
}

TEST(Guid, ParsesUtf16Text) {
    const Guid guid(u"{0123ABCD-4567-89EF-ABCD-0123456789EF}");
    EXPECT_EQ(guid, Guid(std::string_view(kText)));
}

TEST(Guid, MalformedTextGivesTheNilGuid) {
    for (std::string_view text : {
             "",
             "0123abcd456789efabcd0123456789ef",        // no dashes
             "0123abcd-4567-89ef-abcd-0123456789e",     // short
             "0123abcd-4567-89ef-abcd-0123456789eff",   // long
             "0123abcd-4567-89ef-abcd-0123456789eg",    // not hex
             "0123abcd-4567-89ef-abcd+0123456789ef",    // wrong separator
             "0123abc-d4567-89ef-abcd-0123456789ef",    // dash misplaced
             "{0123abcd-4567-89ef-abcd-0123456789ef",   // one brace
             "(0123abcd-4567-89ef-abcd-0123456789ef)",  // other brackets
             "+123abcd-4567-89ef-abcd-0123456789ef",    // sign
             "-123abcd-4567-89ef-abcd-0123456789ef",
             " 0123abcd-4567-89ef-abcd-0123456789ef",  // blank
             "0123abcd-4567-89ef-abcd-0x23456789ef",
         }) {
        EXPECT_TRUE(Guid(text).IsNil()) << text;
    }
}

TEST(Guid, NonAsciiUtf16TextGivesTheNilGuid) {
    EXPECT_TRUE(Guid(u"0123abcd-4567-89ef-abcd-0123456789e\u0660").IsNil());
    EXPECT_TRUE(Guid(u"0123abcd-4567-89ef-abcd-0123456789e\U0001F600").IsNil());
    // U+0131 and U+0130 would read as '1' and '0' if only their low byte were looked at.
    EXPECT_TRUE(Guid(u"0123abcd-4567-89ef-abcd-0\u0131\u01303456789ef").IsNil());
    EXPECT_FALSE(Guid(u"0123abcd-4567-89ef-abcd-0103456789ef").IsNil());
}

TEST(Guid, CreateUniqueMakesDistinctVersionFourGuids) {
    std::unordered_set<Guid> seen;
    for (int i = 0; i < 1000; ++i) {
        const Guid guid = Guid::CreateUnique();
        EXPECT_FALSE(guid.IsNil());
        EXPECT_EQ((guid.High() >> 12) & 0xF, 4u);
        EXPECT_EQ(guid.Low() >> 62, 2u);  // RFC 4122 variant
        EXPECT_TRUE(seen.insert(guid).second);
    }
}

TEST(Guid, TextRoundTripsInBothEncodings) {
    const Guid guid = Guid::CreateUnique();
    EXPECT_EQ(Guid(guid.AsString()), guid);
    EXPECT_EQ(Guid(guid.AsStdString()), guid);
    EXPECT_TRUE(kelcore::string::StdToUTF16String(guid.AsStdString()) == guid.AsString());
}

TEST(Guid, EqualityNeedsBothHalves) {
    EXPECT_EQ(Guid(1, 2), Guid(1, 2));
    EXPECT_NE(Guid(1, 2), Guid(1, 3));
    EXPECT_NE(Guid(1, 2), Guid(0, 2));
}

TEST(Guid, OrdersByHighHalfThenLowHalf) {
    EXPECT_LT(Guid(1, 9), Guid(2, 0));
    EXPECT_LT(Guid(1, 1), Guid(1, 2));
    EXPECT_FALSE(Guid(1, 2) < Guid(1, 2));
    EXPECT_LT(Guid(0x7fffffffffffffffULL, 0), Guid(0x8000000000000000ULL, 0));
}

TEST(Guid, HashSeparatesHalves) {
    const std::hash<Guid> hash;
    EXPECT_EQ(hash(Guid(5, 6)), hash(Guid(5, 6)));
    EXPECT_NE(hash(Guid(5, 6)), hash(Guid(6, 5)));
}

TEST(Guid, StreamsItsCanonicalText) {
    std::ostringstream out;
    out << Guid(std::string_view(kText));
    EXPECT_EQ(out.str(), "0123abcd-4567-89ef-abcd-0123456789ef");
}

}  // namespace
