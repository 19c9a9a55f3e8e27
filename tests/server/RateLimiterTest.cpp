#include <gtest/gtest.h>

#include "http/RateLimiter.h"

namespace vantroserver::http {
namespace {

using namespace std::chrono_literals;

class RateLimiterTest : public ::testing::Test {
protected:
    RateLimiter::Clock::time_point now{};
    RateLimiter limiter{RateLimit{3, 1000ms}, [this] { return now; }};
};

TEST_F(RateLimiterTest, AllowsTheLimitThenRefusesUntilTheOldestLeavesTheWindow) {
    EXPECT_FALSE(limiter.Acquire("t"));
    now += 100ms;
    EXPECT_FALSE(limiter.Acquire("t"));
    now += 100ms;
    EXPECT_FALSE(limiter.Acquire("t"));
    const auto wait = limiter.Acquire("t");
    ASSERT_TRUE(wait);
    EXPECT_EQ(*wait, 800ms);  // The first request, at 0, leaves the window at 1000.
    now += 799ms;
    EXPECT_TRUE(limiter.Acquire("t"));
    now += 1ms;
    EXPECT_FALSE(limiter.Acquire("t"));
}

TEST_F(RateLimiterTest, RefusedRequestsDoNotCount) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(limiter.Acquire("t"));
    }
    for (int i = 0; i < 10; ++i) {
        EXPECT_TRUE(limiter.Acquire("t"));
    }
    now += 1000ms;
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(limiter.Acquire("t"));
    }
}

TEST_F(RateLimiterTest, CountsEachTokenOnItsOwn) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(limiter.Acquire("a"));
    }
    EXPECT_TRUE(limiter.Acquire("a"));
    EXPECT_FALSE(limiter.Acquire("b"));
}

TEST(RateLimiter, RefusesAnEmptyLimit) {
    EXPECT_THROW(RateLimiter(RateLimit{0, std::chrono::milliseconds(10)}), std::invalid_argument);
    EXPECT_THROW(RateLimiter(RateLimit{1, std::chrono::milliseconds(0)}), std::invalid_argument);
}

}  // namespace
}  // namespace vantroserver::http
