// An executor that runs nothing until its owner says so, on the owner's thread, in the order
// of due time on a ManualClock (equal due times in post order). Tests drive it through
// VirtualTime; posting is any-thread, running is for the one thread that drives it.
//
//   auto clock = std::make_shared<ManualClock>();
//   auto executor = std::make_shared<ManualExecutor>(clock);
//   executor->PostAfterDelay(task, 5000);  executor->AdvanceBy(std::chrono::seconds(5));
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

#include <kelcore/threads/AsyncExecutor.h>
#include <kelcore/threads/ManualClock.h>

namespace kelcore::threads {

class ManualExecutor final : public AsyncExecutor {
public:
    explicit ManualExecutor(std::shared_ptr<ManualClock> clock);

    /// Drops every waiting task, and every task posted from now on.
    ~ManualExecutor() override;

    /// Any thread. Due at the clock's present reading. Does nothing after Shutdown.
    void Post(std::function<void()> task) override;
    /// Any thread. Due `delayMilliseconds` after the clock's present reading. Does nothing
    /// after Shutdown.
    void PostAfterDelay(std::function<void()> task, std::uint64_t delayMilliseconds) override;

    /// Moves the clock forward by `duration`, running on this thread each task that falls due
    /// on the way, with the clock set to its due time, including tasks that tasks post. An
    /// exception from a task leaves this call with the clock at that task's due time.
    /// Returns the number of tasks run.
    std::size_t AdvanceBy(std::chrono::steady_clock::duration duration);
    /// Runs the tasks due now, including tasks that they post for now. Returns the count.
    std::size_t RunUntilIdle();

    /// Any thread. Drops the waiting tasks, and those that their destruction posts, and makes
    /// later posts do nothing. Tasks may own futures whose state refers back to this executor;
    /// dropping them breaks that cycle. Does nothing the second time.
    void Shutdown();

    /// Any thread. Tasks waiting, due or not.
    std::size_t PendingCount() const;
    /// Any thread. How long until the earliest waiting task falls due (zero when one is due);
    /// nothing waiting gives duration::max().
    std::chrono::steady_clock::duration TimeToNextTask() const;

    const std::shared_ptr<ManualClock>& GetClock() const { return clock; }

private:
    std::shared_ptr<ManualClock> clock;
    mutable std::mutex mutex;
    // A multimap keeps equal keys in insertion order, which gives post order at equal times.
    std::multimap<Clock::TimePoint, std::function<void()>> tasks;
    bool stopped = false;
};

}  // namespace kelcore::threads
