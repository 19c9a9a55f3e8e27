// Virtual time for tests. While one lives, threads::Now() reads a manual clock and both
// GetDefaultExecutor and GetIOBoundExecutor answer one manual executor, so delayed work runs
// only when the test advances time, instantly and in due-time order, on the test's thread.
// The destructor puts back what was installed before and drops the tasks still waiting.
// Owned by the test, on its thread.
//
//   kelcore::threads::VirtualTime time;
//   queue->Start();                            // posts to GetIOBoundExecutor()
//   time.AdvanceBy(std::chrono::seconds(60));  // runs every tick due in the next minute
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>

#include <kelcore/threads/AsyncExecutor.h>
#include <kelcore/threads/Clock.h>
#include <kelcore/threads/ManualClock.h>
#include <kelcore/threads/ManualExecutor.h>

namespace kelcore::threads {

class VirtualTime {
public:
    VirtualTime();
    ~VirtualTime();

    VirtualTime(const VirtualTime&) = delete;
    VirtualTime& operator=(const VirtualTime&) = delete;

    /// See ManualExecutor::AdvanceBy. Returns the number of tasks run.
    std::size_t AdvanceBy(std::chrono::steady_clock::duration duration) {
        return executor->AdvanceBy(duration);
    }
    /// Runs the tasks due now, and those they post for now. Returns the count.
    std::size_t RunUntilIdle() { return executor->RunUntilIdle(); }

    /// Any thread. The virtual reading, the same as threads::Now().
    Clock::TimePoint Now() const { return clock->Now(); }
    /// Any thread. Tasks waiting, due or not.
    std::size_t PendingCount() const { return executor->PendingCount(); }

    const std::shared_ptr<ManualClock>& GetClock() const { return clock; }
    const std::shared_ptr<ManualExecutor>& GetExecutor() const { return executor; }

private:
    std::shared_ptr<ManualClock> clock;
    std::shared_ptr<ManualExecutor> executor;
    std::shared_ptr<Clock> previousClock;
    std::shared_ptr<AsyncExecutor> previousDefault;
    std::shared_ptr<AsyncExecutor> previousIOBound;
};

}  // namespace kelcore::threads
