#include <vantrokelui/sharedui/CallToActionButton.h>

namespace vantrokelui::sharedui {

CallToActionButton::CallToActionButton() {
    SetButtonChromeType(0);
    SetCustomThemeColor(kBackgroundColorID, kBlue);
    SetCustomThemeColor(kActiveBackgroundColorID, kBlue);
    SetCustomThemeColor(kTextColorID, kWhite);
    SetDisplayBorderNever(true);
    SetFontStyleName("Bold");
}

}  // namespace vantrokelui::sharedui
