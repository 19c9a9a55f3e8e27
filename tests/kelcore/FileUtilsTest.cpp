#include <string>

#include <gtest/gtest.h>

#include <kelcore/utility/FileUtils.h>

namespace {

using kelcore::string::string;
using kelcore::utility::FileUtils;

string Replace(kelcore::string::string_view name) {
    return FileUtils::ReplaceIllegalFileNameCharacters(name, u'-');
}

TEST(FileUtils, ReplacesSlashAndTheCharactersOtherSystemsReject) {
    EXPECT_TRUE(Replace(u"a/b\\c:d*e?f\"g<h>i|j") == u"a-b-c-d-e-f-g-h-i-j");
}

TEST(FileUtils, ReplacesEveryControlCharacter) {
    string name;
    for (char16_t c = 0; c < 0x20; ++c) {
        name += c;
    }
    name += u'\x7F';
    EXPECT_TRUE(Replace(name) == string(0x21, u'-'));
}

TEST(FileUtils, KeepsOrdinaryAndNonAsciiCharacters) {
    const string name = u"Ärger im Büro, take 2 (final) [v3] #1 & more.mov \U0001F600 \x80";
    EXPECT_TRUE(Replace(name) == name);
}

TEST(FileUtils, NameOfDotsOnlyBecomesReplacements) {
    EXPECT_TRUE(Replace(u".") == u"-");
    EXPECT_TRUE(Replace(u"..") == u"--");
    EXPECT_TRUE(Replace(u"...") == u"---");
}

TEST(FileUtils, DotsAmongOtherCharactersStay) {
    EXPECT_TRUE(Replace(u".hidden") == u".hidden");
    EXPECT_TRUE(Replace(u"a..b.") == u"a..b.");
}

TEST(FileUtils, EmptyNameStaysEmpty) {
    EXPECT_TRUE(Replace(u"").empty());
}

TEST(FileUtils, Utf8OverloadReplacesTheSameCharacters) {
    EXPECT_EQ(FileUtils::ReplaceIllegalFileNameCharacters(std::string_view("Ä/b:\x01.."), '_'),
              "Ä_b__..");
    EXPECT_EQ(FileUtils::ReplaceIllegalFileNameCharacters(std::string_view(".."), '_'), "__");
}

TEST(FileUtils, PathFileNameIsTheLastComponent) {
    EXPECT_TRUE(FileUtils::GetPathFileName(u"/home/user/.cache/Clip 2.mp4") == u"Clip 2.mp4");
    EXPECT_EQ(FileUtils::GetPathFileName(std::string_view("a/b/c.txt")), "c.txt");
}

TEST(FileUtils, PathWithoutSlashIsItsOwnFileName) {
    EXPECT_TRUE(FileUtils::GetPathFileName(u"movie.mp4") == u"movie.mp4");
    EXPECT_EQ(FileUtils::GetPathFileName(std::string_view("")), "");
}

TEST(FileUtils, PathEndingInSlashHasAnEmptyFileName) {
    EXPECT_TRUE(FileUtils::GetPathFileName(u"/tmp/dir/").empty());
    EXPECT_TRUE(FileUtils::GetPathFileName(u"/").empty());
}

}  // namespace
