// Shows short notices (toasts) over the host's window, with at most one button. A service with a
// replaceable default: the process-wide instance prints each toast to stderr
// (StderrToastManager) until the host installs its own (the toolkit's Qt side, a test recorder).
// Installing and fetching are any thread; DisplayToastMessage is called on the main thread.
//
//   auto toasts = kelui::sharedui::UI_ToastManager::GetDefaultInstance();
//   toasts->DisplayToastMessage(window, "Upload failed.", "Try again", retry, [] {},
//                               ToastType::Error, 0.0, kToastManager_DefaultPriority,
//                               ToastLineType::SingleLine);
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <kelui/sharedui/ToastLineType.h>
#include <kelui/sharedui/ToastMessage.h>
#include <kelui/sharedui/ToastType.h>
#include <kelui/ui/UI_Window.h>

namespace kelui::sharedui {

class UI_ToastManager {
public:
    virtual ~UI_ToastManager();

    /// The installed manager, or the stderr one when none is installed. Never null. Any thread.
    static std::shared_ptr<UI_ToastManager> GetDefaultInstance();
    /// Installs `manager` as the process's; null goes back to the stderr one. Any thread.
    static void SetDefaultInstance(std::shared_ptr<UI_ToastManager> manager);

    /// Shows `message` parented to `window` (which may be null: no window). Main thread.
    void DisplayToastMessage(const std::shared_ptr<ui::UI_Window>& window,
                             const std::string& message, const std::string& buttonLabel,
                             std::function<void()> action, std::function<void()> dismissal,
                             ToastType type, double duration, std::int32_t priority,
                             ToastLineType lineType);

protected:
    UI_ToastManager() = default;

    /// What an implementation does with one toast. Main thread.
    virtual void Display(ToastMessage toast) = 0;
};

}  // namespace kelui::sharedui
