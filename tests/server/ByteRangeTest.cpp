#include "http/ByteRange.h"

#include <gtest/gtest.h>

namespace {

using vantroserver::http::ByteRange;
using Outcome = ByteRange::Outcome;

void ExpectPartial(const ByteRange& range, std::uint64_t first, std::uint64_t length) {
    EXPECT_EQ(range.outcome, Outcome::Partial);
    EXPECT_EQ(range.first, first);
    EXPECT_EQ(range.length, length);
}

TEST(ByteRange, NoHeaderMeansTheWholeFile) {
    EXPECT_EQ(ByteRange::Parse("", 100).outcome, Outcome::Whole);
}

TEST(ByteRange, AClosedRangeSelectsItsBytes) {
    ExpectPartial(ByteRange::Parse("bytes=10-19", 100), 10, 10);
    ExpectPartial(ByteRange::Parse("bytes=0-0", 100), 0, 1);
}

TEST(ByteRange, TheLastByteCanBeAskedForByPosition) {
    const auto range = ByteRange::Parse("bytes=99-99", 100);
    ExpectPartial(range, 99, 1);
    EXPECT_EQ(range.ContentRange(100), "bytes 99-99/100");
}

TEST(ByteRange, AnOpenRangeRunsToTheEnd) {
    ExpectPartial(ByteRange::Parse("bytes=40-", 100), 40, 60);
}

TEST(ByteRange, AnEndPastTheFileIsCutToIt) {
    ExpectPartial(ByteRange::Parse("bytes=90-5000", 100), 90, 10);
}

TEST(ByteRange, ASuffixSelectsTheLastBytes) {
    const auto range = ByteRange::Parse("bytes=-30", 100);
    ExpectPartial(range, 70, 30);
    EXPECT_EQ(range.ContentRange(100), "bytes 70-99/100");
}

TEST(ByteRange, ASuffixLongerThanTheFileSelectsAllOfIt) {
    ExpectPartial(ByteRange::Parse("bytes=-500", 100), 0, 100);
}

TEST(ByteRange, UnitAndSpacesAreReadLeniently) {
    ExpectPartial(ByteRange::Parse("  Bytes=5-9 ", 100), 5, 5);
}

TEST(ByteRange, AStartAtOrPastTheEndIsUnsatisfiable) {
    EXPECT_EQ(ByteRange::Parse("bytes=100-", 100).outcome, Outcome::Unsatisfiable);
    EXPECT_EQ(ByteRange::Parse("bytes=100-200", 100).outcome, Outcome::Unsatisfiable);
}

TEST(ByteRange, AnEmptySuffixIsUnsatisfiable) {
    EXPECT_EQ(ByteRange::Parse("bytes=-0", 100).outcome, Outcome::Unsatisfiable);
}

TEST(ByteRange, NoRangeOfAnEmptyFileIsSatisfiable) {
    EXPECT_EQ(ByteRange::Parse("bytes=0-", 0).outcome, Outcome::Unsatisfiable);
    EXPECT_EQ(ByteRange::Parse("bytes=-1", 0).outcome, Outcome::Unsatisfiable);
}

TEST(ByteRange, SeveralRangesAreAnsweredWithTheWholeFile) {
    EXPECT_EQ(ByteRange::Parse("bytes=0-1,5-6", 100).outcome, Outcome::Whole);
}

TEST(ByteRange, MalformedHeadersAreIgnored) {
    for (const char* header :
         {"bytes=", "bytes=-", "bytes=a-b", "bytes=5", "bytes=9-3", "items=0-5", "bytes=+1-5",
          "bytes=1 -5", "bytes=0x10-", "bytes=99999999999999999999999-"}) {
        EXPECT_EQ(ByteRange::Parse(header, 100).outcome, Outcome::Whole) << header;
    }
}

}  // namespace
