// The toast manager of a process without a screen: each toast becomes one line on stderr (line
// breaks in its text become spaces), with its button's label in brackets. The button cannot be
// pressed and the toast is dismissed at once. The default of UI_ToastManager::GetDefaultInstance.
// Main thread, as every manager.
#pragma once

#include <kelui/sharedui/UI_ToastManager.h>

namespace kelui::sharedui {

class StderrToastManager final : public UI_ToastManager {
protected:
    void Display(ToastMessage toast) override;
};

}  // namespace kelui::sharedui
