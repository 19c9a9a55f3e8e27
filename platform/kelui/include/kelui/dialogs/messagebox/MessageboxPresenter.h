// What puts a modal question in front of the user and waits for the answer. A service with a
// replaceable default: the process-wide presenter writes the question to stderr and answers
// the default button, since a process without a screen cannot ask (StderrMessageboxPresenter),
// until the host installs its own (the toolkit's Qt side, a terminal prompt, a test script).
// Installing and fetching are any thread; Present runs on the main thread.
#pragma once

#include <memory>
#include <optional>

#include <kelui/dialogs/messagebox/MessageboxRequest.h>
#include <kelui/dialogs/messagebox/UI_MessageBox.h>

namespace kelui::dialogs::messagebox {

class MessageboxPresenter {
public:
    virtual ~MessageboxPresenter();

    /// The installed presenter, or the stderr one. Never null. Any thread.
    static std::shared_ptr<MessageboxPresenter> GetDefaultInstance();
    /// Installs `presenter`; null goes back to the stderr one. Any thread.
    static void SetDefaultInstance(std::shared_ptr<MessageboxPresenter> presenter);

    /// Asks, waits for the answer and returns the button pressed (NoButton when the box was
    /// closed). `checkBox`, when the request has one, receives its final state. Main thread.
    virtual UI_MessageBox::Button Present(const MessageboxRequest& request,
                                          std::optional<bool>& checkBox) = 0;
};

}  // namespace kelui::dialogs::messagebox
