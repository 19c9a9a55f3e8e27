// A fixed set of worker threads that run posted closures, with delayed posts on a steady
// timer. Backs the process-wide executors; a component may also own one privately (by
// shared pointer). A task that throws is logged and the pool goes on.
//
//   auto pool = std::make_shared<kelcore::threads::ThreadPoolExecutor>(2);
//   pool->PostAfterDelay([] { Flush(); }, 250);
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include <kelcore/threads/AsyncExecutor.h>

namespace kelcore::threads {

namespace detail {
class ThreadPoolCore;
}

class ThreadPoolExecutor final : public AsyncExecutor {
public:
    /// Starts `threadCount` workers (at least one).
    explicit ThreadPoolExecutor(std::size_t threadCount);
    /// Shuts down; see Shutdown. May run on one of its own workers (a task held the last
    /// reference): the workers are then waited for, and freed, by a helper thread that is joined
    /// at exit at the latest.
    ~ThreadPoolExecutor() override;

    ThreadPoolExecutor(const ThreadPoolExecutor&) = delete;
    ThreadPoolExecutor& operator=(const ThreadPoolExecutor&) = delete;

    /// Any thread. Does nothing after Shutdown.
    void Post(std::function<void()> task) override;
    /// Any thread. Does nothing after Shutdown.
    void PostAfterDelay(std::function<void()> task, std::uint64_t delayMilliseconds) override;

    /// Any thread. Drops tasks not yet started and every later post, then waits for running
    /// tasks to end. Called on one of its own workers it does not wait for them; they finish
    /// once their tasks return. Does nothing the second time.
    void Shutdown();

    /// Any thread. Whether the caller is one of this pool's workers.
    bool RunsTasksOnCurrentThread() const;

    /// Any thread. The number of worker threads.
    std::size_t ThreadCount() const;

private:
    std::shared_ptr<detail::ThreadPoolCore> core;
};

}  // namespace kelcore::threads
