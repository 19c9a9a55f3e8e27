// One modal question as it was asked: a plain record that presenters answer and tests record.
// The texts are UTF-8; an empty button text means the box has no such button.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <kelui/dialogs/messagebox/UI_MessageBox.h>
#include <kelui/limner/DrawingSupplier.h>
#include <kelui/ui/UI_Window.h>

namespace kelui::dialogs::messagebox {

struct MessageboxRequest {
    std::shared_ptr<limner::DrawingSupplier> drawingSupplier;
    std::string title;
    std::string message;
    std::shared_ptr<ui::UI_Window> parent;
    std::array<std::string, 5> buttons;  // Button1 .. Button5
    std::optional<bool> checkBox;        // the check box's initial state, when it has one
    UI_MessageBox::Button defaultButton = UI_MessageBox::Button1;
    UI_MessageBox::Icon icon = UI_MessageBox::Icon::None;
};

}  // namespace kelui::dialogs::messagebox
