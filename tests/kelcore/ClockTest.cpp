#include <chrono>
#include <memory>

#include <gtest/gtest.h>

#include <kelcore/threads/Clock.h>
#include <kelcore/threads/ManualClock.h>
#include <kelcore/threads/RealClock.h>

namespace {

using namespace std::chrono_literals;
using kelcore::threads::ManualClock;

TEST(Clock, NowReadsTheRealClockByDefault) {
    const auto before = std::chrono::steady_clock::now();
    const auto now = kelcore::threads::Now();
    const auto after = std::chrono::steady_clock::now();
    EXPECT_LE(before, now);
    EXPECT_LE(now, after);
    EXPECT_NE(std::dynamic_pointer_cast<kelcore::threads::RealClock>(kelcore::threads::GetClock()),
              nullptr);
}

TEST(Clock, AnInstalledClockAnswersNowUntilRemoved) {
    auto manual = std::make_shared<ManualClock>(std::chrono::steady_clock::time_point(1h));
    EXPECT_EQ(kelcore::threads::SetClock(manual), nullptr);
    EXPECT_EQ(kelcore::threads::Now(), std::chrono::steady_clock::time_point(1h));
    manual->AdvanceBy(5s);
    EXPECT_EQ(kelcore::threads::Now(), std::chrono::steady_clock::time_point(1h + 5s));
    EXPECT_EQ(kelcore::threads::SetClock(nullptr), manual);
    EXPECT_NE(kelcore::threads::Now(), std::chrono::steady_clock::time_point(1h + 5s));
}

TEST(ManualClock, NeverGoesBackwards) {
    ManualClock clock(std::chrono::steady_clock::time_point(10s));
    clock.AdvanceTo(std::chrono::steady_clock::time_point(5s));
    clock.AdvanceBy(-3s);
    EXPECT_EQ(clock.Now(), std::chrono::steady_clock::time_point(10s));
    clock.AdvanceTo(std::chrono::steady_clock::time_point(12s));
    EXPECT_EQ(clock.Now(), std::chrono::steady_clock::time_point(12s));
}

}  // namespace
