#include <kelui/ui/MainTopLevelWindow.h>

#include <mutex>

namespace kelui::ui {

namespace {

struct Registration {
    std::mutex mutex;
    std::weak_ptr<UI_Window> window;
};

Registration& GetRegistration() {
    static Registration registration;
    return registration;
}

}  // namespace

std::shared_ptr<UI_Window> GetMainTopLevelWindow() {
    Registration& registration = GetRegistration();
    const std::lock_guard lock(registration.mutex);
    return registration.window.lock();
}

void SetMainTopLevelWindow(std::weak_ptr<UI_Window> window) {
    Registration& registration = GetRegistration();
    const std::lock_guard lock(registration.mutex);
    registration.window = std::move(window);
}

}  // namespace kelui::ui
