// Virtual time that a test can also wait on: kelcore's VirtualTime, with the default and
// IO-bound executors replaced by one that tells the test's thread when something was posted.
// Replies from the network arrive on other threads and are posted to the manual executor;
// PumpUntil runs what is due and sleeps on a condition until the next post, never a fixed time.
// Owned by the test, on its thread.
//
//   PumpedVirtualTime time;
//   time.AdvanceBy(std::chrono::minutes(5));
//   ASSERT_TRUE(time.PumpUntil([&] { return done; }));
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include <kelcore/threads/AsyncExecutor.h>
#include <kelcore/threads/Executors.h>
#include <kelcore/threads/VirtualTime.h>

namespace vantroauthtest {

class PumpedVirtualTime {
public:
    PumpedVirtualTime() : executor(std::make_shared<Notifying>(time.GetExecutor())) {
        kelcore::threads::SetDefaultExecutor(executor);
        kelcore::threads::SetIOBoundExecutor(executor);
    }
    ~PumpedVirtualTime() {
        // VirtualTime's destructor puts back the pools that were there before it.
        kelcore::threads::SetDefaultExecutor(time.GetExecutor());
        kelcore::threads::SetIOBoundExecutor(time.GetExecutor());
    }
    PumpedVirtualTime(const PumpedVirtualTime&) = delete;
    PumpedVirtualTime& operator=(const PumpedVirtualTime&) = delete;

    std::size_t AdvanceBy(std::chrono::steady_clock::duration duration) {
        return time.AdvanceBy(duration);
    }
    std::size_t RunUntilIdle() { return time.RunUntilIdle(); }
    /// Moves virtual time to the earliest waiting task and runs what is then due; does nothing
    /// when no task waits. A fixed step could fall short of a timer posted late in the step.
    std::size_t AdvanceToNextTask() {
        const auto wait = time.GetExecutor()->TimeToNextTask();
        return wait == std::chrono::steady_clock::duration::max() ? 0 : time.AdvanceBy(wait);
    }

    /// Runs due tasks, waiting for posts from other threads, until `done` holds; false when it
    /// still does not after `timeout` of wall-clock time (a failing test's bound only).
    bool PumpUntil(const std::function<bool()>& done,
                   std::chrono::milliseconds timeout = std::chrono::seconds(30)) {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        for (;;) {
            const auto seen = executor->Posts();
            time.RunUntilIdle();
            if (done()) {
                return true;
            }
            if (!executor->WaitForPostAfter(seen, deadline)) {
                time.RunUntilIdle();
                return done();
            }
        }
    }

private:
    class Notifying final : public kelcore::threads::AsyncExecutor {
    public:
        explicit Notifying(std::shared_ptr<kelcore::threads::ManualExecutor> inner)
            : inner(std::move(inner)) {}
        void Post(std::function<void()> task) override {
            inner->Post(std::move(task));
            Count();
        }
        void PostAfterDelay(std::function<void()> task, std::uint64_t delay) override {
            inner->PostAfterDelay(std::move(task), delay);
            Count();
        }
        std::uint64_t Posts() const {
            std::lock_guard lock(mutex);
            return posts;
        }
        bool WaitForPostAfter(std::uint64_t seen, std::chrono::steady_clock::time_point deadline) {
            std::unique_lock lock(mutex);
            return posted.wait_until(lock, deadline, [&] { return posts != seen; });
        }

    private:
        void Count() {
            std::lock_guard lock(mutex);
            ++posts;
            posted.notify_all();
        }
        std::shared_ptr<kelcore::threads::ManualExecutor> inner;
        mutable std::mutex mutex;
        std::condition_variable posted;
        std::uint64_t posts = 0;
    };

    kelcore::threads::VirtualTime time;
    std::shared_ptr<Notifying> executor;
};

}  // namespace vantroauthtest
