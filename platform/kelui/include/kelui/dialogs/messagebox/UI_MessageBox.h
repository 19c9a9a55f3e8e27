// The modal message box's vocabulary: which button was pressed, which icon is shown. Buttons
// are bits so that one answer names one button: the first to the fifth button of a box are
// Button1 to Button5. Plain values; any thread.
#pragma once

#include <cstdint>

namespace kelui::dialogs::messagebox {

class UI_MessageBox {
public:
    enum Button : std::uint32_t {
        NoButton = 0,  // the box was closed without a button
        Button1 = 0x400,
        Button2 = 0x800,
        Button3 = 0x1000,
        Button4 = 0x2000,
        Button5 = 0x4000,
    };

    enum class Icon : std::int32_t {
        None = 0,
        Information = 1,
        Question = 2,
        Error = 3,
        Success = 4,
        Warning = 5,
    };
};

}  // namespace kelui::dialogs::messagebox
