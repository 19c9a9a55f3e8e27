// kelcore's main-thread queue on Qt's event loop: closures wait in the dispatcher's own FIFO and
// one posted Qt event wakes the main thread to run every closure waiting, in the order they were
// posted, with no polling. The FIFO sits behind a std::mutex rather than inside Qt's posted-event
// list so that the hand-over from the posting thread to the main thread is visible to
// ThreadSanitizer (Qt's own locks are not). Installed by StartQtLayer; made on the main thread,
// posted to from any thread.
//
//   kelcore::threads::SetMainThreadDispatcher(std::make_shared<QtMainThreadDispatcher>());
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include <kelcore/threads/MainThreadDispatcherBase.h>

class QObject;

namespace kelui::ui {

class QtMainThreadDispatcher final : public kelcore::threads::MainThreadDispatcherBase {
public:
    /// Main thread, with a QCoreApplication alive.
    QtMainThreadDispatcher();
    /// Main thread. Closures still waiting are dropped.
    ~QtMainThreadDispatcher() override;

    /// Any thread. Runs `task` later in the main thread's event loop, after every task posted
    /// before it. A task posted after the dispatcher is gone is dropped.
    void Post(std::function<void()> task) override;

private:
    class Receiver;
    /// Main thread: runs the closures waiting now; those they post wait for the next wake-up.
    void RunWaiting();

    std::mutex mutex;
    std::deque<std::function<void()>> waiting;
    bool wakePosted = false;
    bool closed = false;
    std::unique_ptr<QObject> receiver;
};

}  // namespace kelui::ui
