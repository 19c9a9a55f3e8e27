#include <kelui/dialogs/messagebox/StderrMessageboxPresenter.h>

#include <cstdio>

namespace kelui::dialogs::messagebox {

UI_MessageBox::Button StderrMessageboxPresenter::Present(const MessageboxRequest& request,
                                                         std::optional<bool>& /*checkBox*/) {
    std::string text = request.title + "\n" + request.message + "\n";
    std::uint32_t bit = UI_MessageBox::Button1;
    for (const std::string& label : request.buttons) {
        if (!label.empty()) {
            text += (bit == request.defaultButton ? "  [*] " : "  [ ] ") + label + "\n";
        }
        bit <<= 1U;
    }
    std::fwrite(text.data(), 1, text.size(), stderr);
    return request.defaultButton;
}

}  // namespace kelui::dialogs::messagebox
