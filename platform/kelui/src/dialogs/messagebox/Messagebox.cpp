#include <kelui/dialogs/messagebox/Messagebox.h>

#include <optional>

#include <kelui/dialogs/messagebox/MessageboxPresenter.h>

namespace kelui::dialogs::messagebox {

UI_MessageBox::Button Messagebox(const std::shared_ptr<limner::DrawingSupplier>& drawingSupplier,
                                 const std::string& title, const std::string& message,
                                 const std::shared_ptr<ui::UI_Window>& parent,
                                 const std::string& button1, const std::string& button2,
                                 const std::string& button3, const std::string& button4,
                                 const std::string& button5, bool* checkBoxValue,
                                 UI_MessageBox::Button defaultButton, UI_MessageBox::Icon icon,
                                 const MessageboxCallback& callback, float /*width*/,
                                 float /*height*/) {
    MessageboxRequest request{drawingSupplier,
                              title,
                              message,
                              parent,
                              {button1, button2, button3, button4, button5},
                              std::nullopt,
                              defaultButton,
                              icon};
    if (checkBoxValue != nullptr) {
        request.checkBox = *checkBoxValue;
    }
    std::optional<bool> checkBox = request.checkBox;
    const UI_MessageBox::Button answer =
        MessageboxPresenter::GetDefaultInstance()->Present(request, checkBox);
    if (checkBoxValue != nullptr && checkBox) {
        *checkBoxValue = *checkBox;
    }
    if (callback) {
        callback(answer);
    }
    return answer;
}

}  // namespace kelui::dialogs::messagebox
