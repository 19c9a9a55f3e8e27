// A moment on the toolkit's monotonic clock. Differences are seconds as doubles, which is how
// the share pipeline measures elapsed encode and upload time. Read through kelcore's clock, so
// tests that install virtual time drive it too. A plain value; any thread.
//
//   const kelui::utility::OS_Time start = kelui::utility::CurrentTime();
//   ... const double seconds = kelui::utility::CurrentTime() - start;
#pragma once

#include <compare>

#include <kelcore/threads/Clock.h>

namespace kelui::utility {

class OS_Time {
public:
    OS_Time() = default;
    explicit OS_Time(kelcore::threads::Clock::TimePoint point) : point(point) {}

    kelcore::threads::Clock::TimePoint GetTimePoint() const { return point; }

    friend bool operator==(const OS_Time&, const OS_Time&) = default;
    friend auto operator<=>(const OS_Time&, const OS_Time&) = default;

private:
    kelcore::threads::Clock::TimePoint point{};
};

/// Any thread. Now, on kelcore's installed clock.
OS_Time CurrentTime();

/// Any thread. `later - earlier` in seconds; negative when `later` is the earlier moment.
double operator-(const OS_Time& later, const OS_Time& earlier);

}  // namespace kelui::utility
