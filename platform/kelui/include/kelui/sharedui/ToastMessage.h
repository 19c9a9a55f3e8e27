// One toast as it was asked for: a plain record that toast managers pass around and that tests
// record. The texts are UTF-8. `action` runs when the user presses the button (only offered
// when `buttonLabel` is not empty), `dismissal` when the toast goes away without it; both on the
// main thread.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <kelui/sharedui/ToastLineType.h>
#include <kelui/sharedui/ToastType.h>
#include <kelui/ui/UI_Window.h>

namespace kelui::sharedui {

struct ToastMessage {
    std::weak_ptr<ui::UI_Window> window;
    std::string message;
    std::string buttonLabel;
    std::function<void()> action;
    std::function<void()> dismissal;
    ToastType type = ToastType::Information;
    double duration = 0.0;  // seconds on screen; 0 keeps it until dismissed
    std::int32_t priority = kToastManager_DefaultPriority;
    ToastLineType lineType = ToastLineType::SingleLine;
};

}  // namespace kelui::sharedui
