#include <chrono>

#include <gtest/gtest.h>

#include <kelcore/threads/VirtualTime.h>
#include <kelui/utility/OS_Time.h>

namespace kelui::utility {
namespace {

TEST(OS_Time, DifferencesAreSecondsOnTheInstalledClock) {
    kelcore::threads::VirtualTime time;
    const OS_Time start = CurrentTime();
    time.AdvanceBy(std::chrono::milliseconds(2500));
    const OS_Time later = CurrentTime();
    EXPECT_DOUBLE_EQ(later - start, 2.5);
    EXPECT_DOUBLE_EQ(start - later, -2.5);
    EXPECT_LT(start, later);
}

}  // namespace
}  // namespace kelui::utility
