#include <kelcore/threads/MainThreadQueue.h>

#include <utility>

namespace kelcore::threads {

void MainThreadQueue::Post(std::function<void()> task) {
    {
        std::lock_guard lock(mutex);
        tasks.push_back(std::move(task));
    }
    posted.notify_one();
}

bool MainThreadQueue::RunOne() {
    std::function<void()> task;
    {
        std::lock_guard lock(mutex);
        if (tasks.empty()) {
            return false;
        }
        task = std::move(tasks.front());
        tasks.pop_front();
    }
    // Run outside the lock: the task may post, and may take long.
    task();
    return true;
}

std::size_t MainThreadQueue::RunUntilEmpty() {
    std::size_t count = 0;
    while (RunOne()) {
        ++count;
    }
    return count;
}

bool MainThreadQueue::PumpUntil(const std::function<bool()>& done,
                                std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!done()) {
        if (RunOne()) {
            continue;
        }
        std::unique_lock lock(mutex);
        if (!posted.wait_until(lock, deadline, [this] { return !tasks.empty(); })) {
            lock.unlock();
            return done();
        }
    }
    return true;
}

std::size_t MainThreadQueue::Size() const {
    std::lock_guard lock(mutex);
    return tasks.size();
}

}  // namespace kelcore::threads
