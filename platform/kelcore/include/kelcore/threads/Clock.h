// The time source of kelcore: a monotonic clock read through threads::Now(). The real one is
// steady_clock; tests install a manual one (VirtualTime) so that timers and time-outs can be
// driven instantly. Readings are steady_clock time points, meaningful only as differences.
//
//   const auto start = kelcore::threads::Now();
//   ... later: if (kelcore::threads::Now() - start > std::chrono::seconds(60)) Expire();
#pragma once

#include <chrono>
#include <memory>

namespace kelcore::threads {

class Clock {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    virtual ~Clock() = default;

    /// Any thread. The current reading; never goes backwards.
    virtual TimePoint Now() const = 0;
};

/// Any thread. The reading of the installed clock.
Clock::TimePoint Now();

/// Any thread. The installed clock (the real one unless a test replaced it).
std::shared_ptr<Clock> GetClock();

/// Any thread. Installs `clock` for Now(); null restores the real clock. Returns the clock
/// installed before (null when it was the real one).
std::shared_ptr<Clock> SetClock(std::shared_ptr<Clock> clock);

}  // namespace kelcore::threads
