// The toast manager of a Qt process: each toast is a transient, non-blocking card at the bottom
// centre of its window (the toast's own, else the registered main window), or at the bottom of
// the primary screen when there is none. It shows its type's icon (from ImageProvider, when a
// resource manager is registered), the message and, when the toast has a label, an action
// button that runs the action and closes it. It closes by itself after its duration (a toast
// that asks for 0 stays until dismissed), on Esc or on its close button, and then runs the
// dismissal. One
// toast shows at a time: a new one of the same or a higher priority replaces the one on screen
// (which counts as dismissed); a lower one waits for its turn. A failure that the action or the
// dismissal throws is logged. Installed by StartQtLayer; made and used on the main thread.
//
//   kelui::sharedui::UI_ToastManager::SetDefaultInstance(
//       std::make_shared<kelui::sharedui::QtToastManager>());
#pragma once

#include <cstddef>
#include <memory>

#include <kelui/sharedui/UI_ToastManager.h>

class QWidget;

namespace kelui::sharedui {

class QtToastManager final : public UI_ToastManager {
public:
    /// Main thread, with a QApplication alive.
    QtToastManager();
    /// Removes any toast on screen without running its functions.
    ~QtToastManager() override;

    /// The toast on screen now, or null: for hosts that lay out around it, and for tests.
    QWidget* GetShownToast() const;
    /// Toasts waiting for the one on screen to go.
    std::size_t GetWaitingCount() const;

protected:
    void Display(ToastMessage toast) override;

private:
    struct State;
    void ShowNow(ToastMessage toast);
    void ShowNext();
    void OnFinished(QWidget* widget, int outcome);
    void OnDestroyed(QWidget* widget);

    std::unique_ptr<State> state;
};

}  // namespace kelui::sharedui
