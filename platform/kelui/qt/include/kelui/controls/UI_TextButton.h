// A button that shows only its text: the panel's Share, Cancel and Sign in buttons. Everything
// but the text comes from UI_Button. Owned by its parent node; main thread.
//
//   boost::intrusive_ptr<UI_TextButton> share(new UI_TextButton);
//   share->SetFontStyleName("Bold");
//   share->SetText(u"Share");
#pragma once

#include <kelui/controls/UI_Button.h>

namespace kelui::controls {

class UI_TextButton : public UI_Button {
public:
    UI_TextButton() = default;
};

}  // namespace kelui::controls
