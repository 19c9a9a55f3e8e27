// A plain main-thread queue installed for a benchmark's lifetime, so that the deliveries the
// measured code queues can be drained between iterations; it is taken out again (after a last
// drain) when it goes. Header-only, so the bench glob does not make it a program. The
// benchmark's main thread.
#pragma once

#include <memory>

#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>

namespace vantrokeluibench {

class ScopedMainThreadQueue {
public:
    ScopedMainThreadQueue() : queue(std::make_shared<kelcore::threads::MainThreadQueue>()) {
        kelcore::threads::SetMainThread();
        kelcore::threads::SetMainThreadDispatcher(queue);
    }
    ~ScopedMainThreadQueue() {
        queue->RunUntilEmpty();
        kelcore::threads::SetMainThreadDispatcher(nullptr);
    }
    ScopedMainThreadQueue(const ScopedMainThreadQueue&) = delete;
    ScopedMainThreadQueue& operator=(const ScopedMainThreadQueue&) = delete;

    /// Runs every queued delivery.
    void Pump() { queue->RunUntilEmpty(); }

private:
    std::shared_ptr<kelcore::threads::MainThreadQueue> queue;
};

}  // namespace vantrokeluibench
