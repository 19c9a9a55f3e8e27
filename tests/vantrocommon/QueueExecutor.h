// An executor for tests that runs nothing by itself: posted tasks wait in a queue, with the
// thread that posted each, until the test runs them on its own thread. Lets a test see where a
// completion was posted from and prove that nothing completed before it chose. Posting: any
// thread; running and waiting: the test's thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include <kelcore/threads/AsyncExecutor.h>

namespace vantrocommontest {

class QueueExecutor final : public kelcore::threads::AsyncExecutor {
public:
    struct Posted {
        std::function<void()> task;
        std::thread::id poster;
    };

    void Post(std::function<void()> task) override {
        {
            std::lock_guard lock(mutex);
            tasks.push_back({std::move(task), std::this_thread::get_id()});
        }
        posted.notify_all();
    }
    /// Delays are not modelled: the task simply waits in the queue with the others.
    void PostAfterDelay(std::function<void()> task, std::uint64_t) override {
        Post(std::move(task));
    }

    /// Waits for a task (at most `limit`) and takes it out of the queue; an empty task when
    /// none came.
    Posted Take(std::chrono::milliseconds limit) {
        std::unique_lock lock(mutex);
        if (!posted.wait_for(lock, limit, [this] { return !tasks.empty(); })) {
            return {};
        }
        Posted first = std::move(tasks.front());
        tasks.pop_front();
        return first;
    }

    std::size_t Waiting() const {
        std::lock_guard lock(mutex);
        return tasks.size();
    }

    /// Drops what waits: a queued completion owns a promise, which cancels its future.
    void Clear() {
        std::deque<Posted> dropped;
        {
            std::lock_guard lock(mutex);
            dropped.swap(tasks);
        }
    }

private:
    mutable std::mutex mutex;
    std::condition_variable posted;
    std::deque<Posted> tasks;
};

}  // namespace vantrocommontest
