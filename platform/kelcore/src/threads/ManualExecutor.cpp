#include <kelcore/threads/ManualExecutor.h>

#include <algorithm>
#include <utility>

namespace kelcore::threads {

ManualExecutor::ManualExecutor(std::shared_ptr<ManualClock> clock) : clock(std::move(clock)) {}

ManualExecutor::~ManualExecutor() {
    Shutdown();
}

void ManualExecutor::Shutdown() {
    std::multimap<Clock::TimePoint, std::function<void()>> dropped;
    {
        std::lock_guard lock(mutex);
        stopped = true;
        dropped.swap(tasks);
    }
    // Destroyed outside the lock: a dropped promise cancels its future, whose continuations
    // may post here again (and are dropped).
}

void ManualExecutor::Post(std::function<void()> task) {
    PostAfterDelay(std::move(task), 0);
}

void ManualExecutor::PostAfterDelay(std::function<void()> task, std::uint64_t delayMilliseconds) {
    const auto due = clock->Now() + std::chrono::milliseconds(delayMilliseconds);
    std::lock_guard lock(mutex);
    if (!stopped) {
        tasks.emplace(due, std::move(task));
    }
}

std::size_t ManualExecutor::AdvanceBy(std::chrono::steady_clock::duration duration) {
    const auto target = clock->Now() + std::max(duration, duration.zero());
    std::size_t count = 0;
    for (;;) {
        std::function<void()> task;
        {
            std::lock_guard lock(mutex);
            if (tasks.empty() || tasks.begin()->first > target) {
                break;
            }
            auto next = tasks.extract(tasks.begin());
            clock->AdvanceTo(next.key());
            task = std::move(next.mapped());
        }
        // Run outside the lock: the task may post.
        task();
        ++count;
    }
    clock->AdvanceTo(target);
    return count;
}

std::size_t ManualExecutor::RunUntilIdle() {
    return AdvanceBy(std::chrono::steady_clock::duration::zero());
}

std::size_t ManualExecutor::PendingCount() const {
    std::lock_guard lock(mutex);
    return tasks.size();
}

std::chrono::steady_clock::duration ManualExecutor::TimeToNextTask() const {
    std::lock_guard lock(mutex);
    if (tasks.empty()) {
        return std::chrono::steady_clock::duration::max();
    }
    return std::max(tasks.begin()->first - clock->Now(),
                    std::chrono::steady_clock::duration::zero());
}

}  // namespace kelcore::threads
