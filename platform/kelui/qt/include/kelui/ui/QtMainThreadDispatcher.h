// kelcore's main-thread queue on Qt's event loop: each Post becomes a queued call into the
// QApplication's thread, so closures run in the running loop in the order they were posted
// (Qt keeps posted events of one priority FIFO across threads), with no polling. Installed by
// StartQtLayer; made on the main thread, posted to from any thread.
//
//   kelcore::threads::SetMainThreadDispatcher(std::make_shared<QtMainThreadDispatcher>());
#pragma once

#include <functional>
#include <memory>

#include <kelcore/threads/MainThreadDispatcherBase.h>

class QObject;

namespace kelui::ui {

class QtMainThreadDispatcher final : public kelcore::threads::MainThreadDispatcherBase {
public:
    /// Main thread, with a QCoreApplication alive.
    QtMainThreadDispatcher();
    ~QtMainThreadDispatcher() override;

    /// Any thread. Runs `task` later in the main thread's event loop, after every task posted
    /// before it. A task posted after the dispatcher is gone is dropped.
    void Post(std::function<void()> task) override;

private:
    std::unique_ptr<QObject> receiver;
};

}  // namespace kelui::ui
