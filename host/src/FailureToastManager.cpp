#include "FailureToastManager.h"

#include <algorithm>
#include <cstdio>

namespace vantroshare {

std::shared_ptr<FailureToastManager> FailureToastManager::Install() {
    auto manager = std::make_shared<FailureToastManager>();
    kelui::sharedui::UI_ToastManager::SetDefaultInstance(manager);
    return manager;
}

bool FailureToastManager::Failed() const {
    const std::lock_guard lock(mutex);
    return !messages.empty();
}

std::vector<std::string> FailureToastManager::Messages() const {
    const std::lock_guard lock(mutex);
    return messages;
}

void FailureToastManager::Display(kelui::sharedui::ToastMessage toast) {
    std::string line = toast.message;
    std::replace(line.begin(), line.end(), '\n', ' ');
    {
        const std::lock_guard lock(mutex);
        messages.push_back(line);
    }
    // The button (Try again) cannot be pressed here; the command's exit code says what to do.
    line = "\n" + line + "\n";
    std::fputs(line.c_str(), stderr);
    std::fflush(stderr);
    if (toast.dismissal) {
        toast.dismissal();
    }
}

}  // namespace vantroshare
