// A button with a picture at the left and its text 6 pixels to the right, both centred
// vertically and together horizontally (the panel's Copy link button). Owned by its parent node;
// main thread.
//
//   boost::intrusive_ptr<UI_PictureTextButton> copy(new UI_PictureTextButton);
//   copy->SetImageSupplyFunction(BindImageSupplyFunction("S_Copy_16", getManager));
//   copy->SetText(u"Copy link");
#pragma once

#include <kelui/controls/UI_Button.h>

namespace kelui::controls {

class UI_PictureTextButton : public UI_Button {
public:
    UI_PictureTextButton() = default;

    /// Where the picture comes from; asked when the button is first drawn or measured, and
    /// again after each call. Null: the text alone.
    void SetImageSupplyFunction(ui::ImageSupplyFunction supply) {
        SetButtonImageSupply(std::move(supply));
    }
    const ui::ImageSupplyFunction& GetImageSupplyFunction() const { return GetButtonImageSupply(); }
};

}  // namespace kelui::controls
