#include <kelui/sharedui/StderrToastManager.h>

#include <algorithm>
#include <cstdio>

namespace kelui::sharedui {

void StderrToastManager::Display(ToastMessage toast) {
    std::string line = toast.message;
    if (!toast.buttonLabel.empty()) {
        line += " [" + toast.buttonLabel + "]";
    }
    // A toast is one line of the log it lands in, whatever breaks its text carries.
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    line += '\n';
    // One write per toast, so that lines from several threads never interleave.
    std::fwrite(line.data(), 1, line.size(), stderr);
    if (toast.dismissal) {
        toast.dismissal();
    }
}

}  // namespace kelui::sharedui
