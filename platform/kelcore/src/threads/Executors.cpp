#include <kelcore/threads/Executors.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <utility>

#include <kelcore/threads/ThreadPoolExecutor.h>

namespace kelcore::threads {
namespace {

struct ExecutorSlots {
    std::mutex mutex;
    std::shared_ptr<AsyncExecutor> defaultOverride;
    std::shared_ptr<AsyncExecutor> ioBoundOverride;
    std::shared_ptr<ThreadPoolExecutor> defaultPool;
    std::shared_ptr<ThreadPoolExecutor> ioBoundPool;
    bool exitHookInstalled = false;
};

ExecutorSlots& Slots() {
    // Leaked on purpose: static destructors may still post at exit; the exit hook has shut
    // the pools down by then, so such posts are dropped instead of touching freed memory.
    static auto* slots = new ExecutorSlots;
    return *slots;
}

std::size_t Cores() {
    return std::max(1u, std::thread::hardware_concurrency());
}

void ShutDownPoolsAtExit() {
    std::shared_ptr<ThreadPoolExecutor> defaultPool;
    std::shared_ptr<ThreadPoolExecutor> ioBoundPool;
    {
        auto& slots = Slots();
        std::lock_guard lock(slots.mutex);
        defaultPool = slots.defaultPool;
        ioBoundPool = slots.ioBoundPool;
    }
    // The pools stay allocated (a late GetDefaultExecutor still answers one) but run nothing.
    if (defaultPool) {
        defaultPool->Shutdown();
    }
    if (ioBoundPool) {
        ioBoundPool->Shutdown();
    }
}

std::shared_ptr<AsyncExecutor> PoolOrOverride(
    std::shared_ptr<AsyncExecutor> ExecutorSlots::*slot,
    std::shared_ptr<ThreadPoolExecutor> ExecutorSlots::*pool, std::size_t threadCount) {
    auto& slots = Slots();
    std::lock_guard lock(slots.mutex);
    if (slots.*slot) {
        return slots.*slot;
    }
    if (!(slots.*pool)) {
        slots.*pool = std::make_shared<ThreadPoolExecutor>(threadCount);
        if (!slots.exitHookInstalled) {
            // Registered after the pool exists, so it runs before the destructors of statics
            // made earlier, which tasks may still be using.
            std::atexit(ShutDownPoolsAtExit);
            slots.exitHookInstalled = true;
        }
    }
    return slots.*pool;
}

std::shared_ptr<AsyncExecutor> Replace(std::shared_ptr<AsyncExecutor> ExecutorSlots::*slot,
                                       std::shared_ptr<AsyncExecutor> executor) {
    auto& slots = Slots();
    std::lock_guard lock(slots.mutex);
    return std::exchange(slots.*slot, std::move(executor));
}

}  // namespace

std::shared_ptr<AsyncExecutor> GetDefaultExecutor() {
    return PoolOrOverride(&ExecutorSlots::defaultOverride, &ExecutorSlots::defaultPool,
                          std::max<std::size_t>(2, Cores()));
}

std::shared_ptr<AsyncExecutor> GetIOBoundExecutor() {
    return PoolOrOverride(&ExecutorSlots::ioBoundOverride, &ExecutorSlots::ioBoundPool,
                          std::clamp<std::size_t>(4 * Cores(), 4, 16));
}

std::shared_ptr<AsyncExecutor> SetDefaultExecutor(std::shared_ptr<AsyncExecutor> executor) {
    return Replace(&ExecutorSlots::defaultOverride, std::move(executor));
}

std::shared_ptr<AsyncExecutor> SetIOBoundExecutor(std::shared_ptr<AsyncExecutor> executor) {
    return Replace(&ExecutorSlots::ioBoundOverride, std::move(executor));
}

}  // namespace kelcore::threads
