#include <kelcore/threads/MainThread.h>

#include <atomic>
#include <cassert>
#include <mutex>
#include <thread>
#include <utility>

namespace kelcore::threads {
namespace {

// Function-local statics: safe to use from other libraries' static initialisers.
std::atomic<std::thread::id>& MainThreadID() {
    static std::atomic<std::thread::id> id{std::this_thread::get_id()};
    return id;
}

struct DispatcherSlot {
    std::mutex mutex;
    std::shared_ptr<MainThreadDispatcherBase> dispatcher;
};

DispatcherSlot& Slot() {
    // Leaked on purpose: closures may still be posted from static destructors at exit.
    static auto* slot = new DispatcherSlot;
    return *slot;
}

std::shared_ptr<MainThreadQueue> DefaultQueuePointer() {
    static auto* queue = new std::shared_ptr<MainThreadQueue>(std::make_shared<MainThreadQueue>());
    return *queue;
}

}  // namespace

void SetMainThread() {
    MainThreadID().store(std::this_thread::get_id());
}

bool CurrentThreadIsMainThread() {
    return MainThreadID().load(std::memory_order_relaxed) == std::this_thread::get_id();
}

void SetMainThreadDispatcher(std::shared_ptr<MainThreadDispatcherBase> dispatcher) {
    auto& slot = Slot();
    std::lock_guard lock(slot.mutex);
    slot.dispatcher = std::move(dispatcher);
}

std::shared_ptr<MainThreadDispatcherBase> GetMainThreadDispatcher() {
    auto& slot = Slot();
    {
        std::lock_guard lock(slot.mutex);
        if (slot.dispatcher) {
            return slot.dispatcher;
        }
    }
    return DefaultQueuePointer();
}

MainThreadQueue& DefaultMainThreadQueue() {
    return *DefaultQueuePointer();
}

void AsyncCallFromMainThread(std::function<void()> fn, [[maybe_unused]] int reserved) {
    assert(reserved == 0);
    GetMainThreadDispatcher()->Post(std::move(fn));
}

void CallFromMainThread(std::function<void()> fn, int reserved, bool synchronous) {
    if (synchronous && CurrentThreadIsMainThread()) {
        fn();
        return;
    }
    AsyncCallFromMainThread(std::move(fn), reserved);
}

}  // namespace kelcore::threads
