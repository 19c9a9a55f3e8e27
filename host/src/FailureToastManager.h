// The toast manager of vantro-share: prints each toast's text (the library's own message) as one
// line on stderr and remembers that a share failed, so that the command can end with exit code 1.
// Every toast the library shows in a headless share is a failure notice. Installed for the
// process by the host's main function; Display runs on the main thread, the readers on any.
//
//   auto toasts = FailureToastManager::Install();
//   if (toasts->Failed()) return 1;
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <kelui/sharedui/UI_ToastManager.h>

namespace vantroshare {

class FailureToastManager final : public kelui::sharedui::UI_ToastManager {
public:
    /// Makes one and installs it as the process's toast manager.
    static std::shared_ptr<FailureToastManager> Install();
    FailureToastManager() = default;

    /// Whether any toast came. Any thread.
    bool Failed() const;
    /// The texts shown so far, oldest first. Any thread.
    std::vector<std::string> Messages() const;

protected:
    void Display(kelui::sharedui::ToastMessage toast) override;

private:
    mutable std::mutex mutex;
    std::vector<std::string> messages;
};

}  // namespace vantroshare
