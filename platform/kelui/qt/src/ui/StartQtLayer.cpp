#include <kelui/ui/StartQtLayer.h>

#include <memory>

#include <QCoreApplication>

#include <kelcore/threads/MainThread.h>
#include <kelui/dialogs/messagebox/QtMessageboxPresenter.h>
#include <kelui/sharedui/QtToastManager.h>
#include <kelui/ui/QtMainThreadDispatcher.h>

namespace kelui::ui {

namespace {

// What StartQtLayer installed; main thread only.
std::shared_ptr<QtMainThreadDispatcher>& InstalledDispatcher() {
    static std::shared_ptr<QtMainThreadDispatcher> dispatcher;
    return dispatcher;
}

}  // namespace

void StartQtLayer() {
    auto& installed = InstalledDispatcher();
    if (installed) {
        return;
    }
    const auto previous = kelcore::threads::GetMainThreadDispatcher();
    installed = std::make_shared<QtMainThreadDispatcher>();
    kelcore::threads::SetMainThreadDispatcher(installed);
    // Whatever waits in the plain queue was posted before anything that Qt now receives.
    if (auto queue = std::dynamic_pointer_cast<kelcore::threads::MainThreadQueue>(previous)) {
        installed->Post([queue] { queue->RunUntilEmpty(); });
    }
    sharedui::UI_ToastManager::SetDefaultInstance(std::make_shared<sharedui::QtToastManager>());
    dialogs::messagebox::MessageboxPresenter::SetDefaultInstance(
        std::make_shared<dialogs::messagebox::QtMessageboxPresenter>());
}

void StopQtLayer() {
    auto& installed = InstalledDispatcher();
    if (!installed) {
        return;
    }
    kelcore::threads::SetMainThreadDispatcher(nullptr);
    // Closures already handed to Qt run now rather than vanish with the dispatcher: a marker
    // posted last tells when every earlier one has run.
    if (QCoreApplication::instance()) {
        bool drained = false;
        installed->Post([&drained] { drained = true; });
        // Posted events only, no input: one round delivers the marker unless a closure stops
        // the layer from inside another one, which the next rounds untangle.
        for (int round = 0; !drained && round < 100; ++round) {
            QCoreApplication::sendPostedEvents();
        }
    }
    installed.reset();
    sharedui::UI_ToastManager::SetDefaultInstance(nullptr);
    dialogs::messagebox::MessageboxPresenter::SetDefaultInstance(nullptr);
}

}  // namespace kelui::ui
