// The message box of a Qt process: a modal QMessageBox with the request's title, message and
// icon, its buttons in the order they were asked for (Button1 first), the request's default
// button, and a "Don't show this again" check box when the request has one. The button pressed
// is mapped back to its UI_MessageBox bit; closing the box without one answers NoButton. It
// belongs to the request's window when that is a Qt window. Installed by StartQtLayer; main
// thread.
//
//   kelui::dialogs::messagebox::MessageboxPresenter::SetDefaultInstance(
//       std::make_shared<kelui::dialogs::messagebox::QtMessageboxPresenter>());
#pragma once

#include <kelui/dialogs/messagebox/MessageboxPresenter.h>

namespace kelui::dialogs::messagebox {

class QtMessageboxPresenter final : public MessageboxPresenter {
public:
    UI_MessageBox::Button Present(const MessageboxRequest& request,
                                  std::optional<bool>& checkBox) override;
};

}  // namespace kelui::dialogs::messagebox
