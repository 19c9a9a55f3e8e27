// Running code on the host's main (UI) thread. The main thread is the one that loaded kelcore
// unless the host names another with SetMainThread. Closures are queued FIFO to the installed
// dispatcher; by default that is a process-wide MainThreadQueue (DefaultMainThreadQueue) which
// the host pumps.
//
//   kelcore::threads::AsyncCallFromMainThread([weak] { if (auto self = weak.lock()) self->Show();
//   }, 0);
#pragma once

#include <functional>
#include <memory>

#include <kelcore/threads/MainThreadDispatcherBase.h>
#include <kelcore/threads/MainThreadQueue.h>

namespace kelcore::threads {

/// Makes the calling thread the main thread.
void SetMainThread();
/// Any thread.
bool CurrentThreadIsMainThread();

/// Installs the dispatcher that main-thread closures go to; null restores the default queue.
/// Call on the main thread before anything posts, or between tests.
void SetMainThreadDispatcher(std::shared_ptr<MainThreadDispatcherBase> dispatcher);
/// Any thread. The dispatcher in use.
std::shared_ptr<MainThreadDispatcherBase> GetMainThreadDispatcher();
/// The queue that serves when no other dispatcher is installed.
MainThreadQueue& DefaultMainThreadQueue();

/// Any thread. Queues `fn` to the main thread and returns at once; never runs it inline, even
/// on the main thread. `reserved` is kept for call compatibility and must be 0.
void AsyncCallFromMainThread(std::function<void()> fn, int reserved = 0);

/// Any thread. With `synchronous` true and the caller on the main thread, runs `fn` now;
/// otherwise queues it as AsyncCallFromMainThread does. `reserved` must be 0.
void CallFromMainThread(std::function<void()> fn, int reserved, bool synchronous);

}  // namespace kelcore::threads
