#include "ProgressParser.h"

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;
using sarvex::ProgressParser;

const ProgressParser::Clock::time_point kStart{};

TEST(ProgressParser, ReportsAtTheEndOfEachBlockFromOutTime) {
    ProgressParser parser(10.0, kStart);

    EXPECT_FALSE(parser.Feed("frame=25", kStart + 1s));
    EXPECT_FALSE(parser.Feed("out_time_us=2500000", kStart + 1s));
    const auto update = parser.Feed("progress=continue", kStart + 1s);

    ASSERT_TRUE(update);
    EXPECT_DOUBLE_EQ(update->fraction, 0.25);
    // A quarter in one second: three more seconds at that rate.
    EXPECT_DOUBLE_EQ(update->remainingSeconds, 3.0);
}

TEST(ProgressParser, IgnoresAnUnknownPositionAndKeepsTheEstimateUnknownAtFirst) {
    ProgressParser parser(10.0, kStart);

    parser.Feed("out_time_us=N/A", kStart + 1s);
    const auto update = parser.Feed("progress=continue", kStart + 1s);

    ASSERT_TRUE(update);
    EXPECT_EQ(update->fraction, 0.0);
    EXPECT_EQ(update->remainingSeconds, -1.0);
}

TEST(ProgressParser, NeverGoesBackNorPastTheEnd) {
    ProgressParser parser(4.0, kStart);

    parser.Feed("out_time_us=2000000", kStart + 1s);
    parser.Feed("progress=continue", kStart + 1s);
    parser.Feed("out_time_us=1000000", kStart + 2s);
    const auto back = parser.Feed("progress=continue", kStart + 2s);
    parser.Feed("out_time_us=-23000", kStart + 2s);
    parser.Feed("out_time_us=9000000", kStart + 3s);
    const auto past = parser.Feed("progress=end", kStart + 3s);

    ASSERT_TRUE(back && past);
    EXPECT_DOUBLE_EQ(back->fraction, 0.5);
    EXPECT_DOUBLE_EQ(past->fraction, 1.0);
    EXPECT_EQ(past->remainingSeconds, 0.0);
}

TEST(ProgressParser, LinesThatAreNotKeyValuePairsChangeNothing) {
    ProgressParser parser(1.0, kStart);

    EXPECT_FALSE(parser.Feed("", kStart));
    EXPECT_FALSE(parser.Feed("garbage", kStart));
    EXPECT_FALSE(parser.Feed("out_time_us=12abc", kStart));
    EXPECT_EQ(parser.Fraction(), 0.0);
}

}  // namespace
