// The presenter of a process without a screen: it writes title, message and buttons to stderr
// and answers the request's default button at once, leaving a check box as it was. The default
// of MessageboxPresenter::GetDefaultInstance. Main thread.
#pragma once

#include <kelui/dialogs/messagebox/MessageboxPresenter.h>

namespace kelui::dialogs::messagebox {

class StderrMessageboxPresenter final : public MessageboxPresenter {
public:
    UI_MessageBox::Button Present(const MessageboxRequest& request,
                                  std::optional<bool>& checkBox) override;
};

}  // namespace kelui::dialogs::messagebox
