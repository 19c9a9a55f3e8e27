#include <kelui/sharedui/StderrToastManager.h>

#include <cstdio>

namespace kelui::sharedui {

void StderrToastManager::Display(ToastMessage toast) {
    // One write per toast, so that lines from several threads never interleave.
    std::string line = toast.message;
    if (!toast.buttonLabel.empty()) {
        line += " [" + toast.buttonLabel + "]";
    }
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
    if (toast.dismissal) {
        toast.dismissal();
    }
}

}  // namespace kelui::sharedui
