#include <kelui/sharedui/UI_ToastManager.h>

#include <mutex>

#include <kelui/sharedui/StderrToastManager.h>

namespace kelui::sharedui {

namespace {

struct Installed {
    std::mutex mutex;
    std::shared_ptr<UI_ToastManager> manager;
};

Installed& GetInstalled() {
    static Installed installed;
    return installed;
}

}  // namespace

UI_ToastManager::~UI_ToastManager() = default;

std::shared_ptr<UI_ToastManager> UI_ToastManager::GetDefaultInstance() {
    Installed& installed = GetInstalled();
    const std::lock_guard lock(installed.mutex);
    if (!installed.manager) {
        installed.manager = std::make_shared<StderrToastManager>();
    }
    return installed.manager;
}

void UI_ToastManager::SetDefaultInstance(std::shared_ptr<UI_ToastManager> manager) {
    Installed& installed = GetInstalled();
    const std::lock_guard lock(installed.mutex);
    installed.manager = std::move(manager);
}

void UI_ToastManager::DisplayToastMessage(
    const std::shared_ptr<ui::UI_Window>& window, const std::string& message,
    const std::string& buttonLabel, std::function<void()> action, std::function<void()> dismissal,
    ToastType type, double duration, std::int32_t priority, ToastLineType lineType) {
    Display(ToastMessage{window, message, buttonLabel, std::move(action), std::move(dismissal),
                         type, duration, priority, lineType});
}

}  // namespace kelui::sharedui
