// Asks the user a modal question: the toolkit's entry, which builds a MessageboxRequest and
// hands it to the installed MessageboxPresenter. Main thread; it returns when the user has
// answered.
//
//   auto answer = Messagebox(supplier, title, message, window, "Close now", "Close later", "",
//                            "", "", nullptr, UI_MessageBox::Button2,
//                            UI_MessageBox::Icon::Warning, nullptr, 0.0f, 0.0f);
#pragma once

#include <functional>
#include <memory>
#include <string>

#include <kelui/dialogs/messagebox/UI_MessageBox.h>
#include <kelui/limner/DrawingSupplier.h>
#include <kelui/ui/UI_Window.h>

namespace kelui::dialogs::messagebox {

/// Called with the answer once the box has closed, before Messagebox returns. Main thread.
using MessageboxCallback = std::function<void(UI_MessageBox::Button)>;

/// Shows the box and returns the button pressed. Empty button texts leave those buttons out.
/// `checkBoxValue`, when not null, is the check box's initial state and receives its final
/// one; null means no check box. `width` and `height` of 0 let the box size itself.
UI_MessageBox::Button Messagebox(const std::shared_ptr<limner::DrawingSupplier>& drawingSupplier,
                                 const std::string& title, const std::string& message,
                                 const std::shared_ptr<ui::UI_Window>& parent,
                                 const std::string& button1, const std::string& button2,
                                 const std::string& button3, const std::string& button4,
                                 const std::string& button5, bool* checkBoxValue,
                                 UI_MessageBox::Button defaultButton, UI_MessageBox::Icon icon,
                                 const MessageboxCallback& callback, float width, float height);

}  // namespace kelui::dialogs::messagebox
