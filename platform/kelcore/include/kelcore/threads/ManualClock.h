// A clock that moves only when told to: the time source of VirtualTime. Shared by the test
// and whatever reads threads::Now(); readable from any thread.
//
//   auto clock = std::make_shared<kelcore::threads::ManualClock>();
//   clock->AdvanceBy(std::chrono::seconds(5));
#pragma once

#include <atomic>
#include <chrono>

#include <kelcore/threads/Clock.h>

namespace kelcore::threads {

class ManualClock final : public Clock {
public:
    /// Starts at the real clock's reading, so that readings look like real ones.
    ManualClock();
    explicit ManualClock(TimePoint start) : now(start) {}

    /// Any thread.
    TimePoint Now() const override { return now.load(); }

    /// Any thread. Moves the clock to `time`; does nothing if that is earlier than now.
    void AdvanceTo(TimePoint time);
    /// Any thread. Moves the clock forward by `duration`; a negative one does nothing.
    void AdvanceBy(std::chrono::steady_clock::duration duration);

private:
    std::atomic<TimePoint> now;
};

}  // namespace kelcore::threads
