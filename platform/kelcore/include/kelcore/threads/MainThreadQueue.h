// A plain FIFO main-thread dispatcher that its owner pumps: the headless host's event loop and
// the tests' deterministic stand-in for one. Posting is any-thread; pumping is for the main
// thread only. Tasks posted while a pump runs are run by the same pump when it drains.
//
//   auto queue = std::make_shared<MainThreadQueue>();
//   kelcore::threads::SetMainThreadDispatcher(queue);   // on the main thread
//   queue->PumpUntil([&] { return done; }, std::chrono::seconds(5));
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

#include <kelcore/threads/MainThreadDispatcherBase.h>

namespace kelcore::threads {

class MainThreadQueue final : public MainThreadDispatcherBase {
public:
    /// Any thread.
    void Post(std::function<void()> task) override;

    /// Runs the oldest task, if any. Returns whether one ran.
    bool RunOne();
    /// Runs tasks until the queue is empty, including tasks that they post. Returns the count.
    std::size_t RunUntilEmpty();
    /// Runs tasks, waiting for new ones when the queue is empty, until `done` answers true
    /// (checked before each task and after each wait) or `timeout` passes. Returns `done()`.
    bool PumpUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout);

    /// Any thread. Tasks waiting to run.
    std::size_t Size() const;

private:
    mutable std::mutex mutex;
    std::condition_variable posted;
    std::deque<std::function<void()>> tasks;
};

}  // namespace kelcore::threads
