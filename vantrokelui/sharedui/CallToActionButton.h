// The panel's one prominent button per screen (Share, Sign in): bold white text on the service's
// blue, without a border. A text button that only sets its look. Main thread.
//
//   boost::intrusive_ptr<sharedui::CallToActionButton> share(new sharedui::CallToActionButton);
#pragma once

#include <kelui/controls/UI_TextButton.h>
#include <kelui/limner/ColorRGBA.h>

namespace vantrokelui::sharedui {

class CallToActionButton : public kelui::controls::UI_TextButton {
public:
    /// The service's blue, 38/255, 127/255, 235/255.
    static constexpr limner::ColorRGBA kBlue{38.0f / 255.0f, 127.0f / 255.0f, 235.0f / 255.0f,
                                             1.0f};
    static constexpr limner::ColorRGBA kWhite{1.0f, 1.0f, 1.0f, 1.0f};
    /// The theme colour identifiers of a button: its background, its background when hovered or
    /// pressed, and its text.
    static constexpr std::uint32_t kBackgroundColorID = 5000017;
    static constexpr std::uint32_t kActiveBackgroundColorID = 5000016;
    static constexpr std::uint32_t kTextColorID = 5000015;

    CallToActionButton();
};

}  // namespace vantrokelui::sharedui
