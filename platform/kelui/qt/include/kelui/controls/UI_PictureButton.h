// A button that shows only a picture (settings, close). Its text is not drawn: it is what screen
// readers announce and, unless the owner sets another, the tooltip. Owned by its parent node;
// main thread.
//
//   boost::intrusive_ptr<UI_PictureButton> settings(new UI_PictureButton);
//   settings->SetImageSupplyFunction(BindImageSupplyFunction("S_Settings_18", getManager));
//   settings->SetText(u"Settings");
#pragma once

#include <kelui/controls/UI_Button.h>

namespace kelui::controls {

class UI_PictureButton : public UI_Button {
public:
    UI_PictureButton() = default;

    /// Where the picture comes from; asked when the button is first drawn or measured, and
    /// again after each call. Null: no picture.
    void SetImageSupplyFunction(ui::ImageSupplyFunction supply) {
        SetButtonImageSupply(std::move(supply));
    }
    const ui::ImageSupplyFunction& GetImageSupplyFunction() const { return GetButtonImageSupply(); }

    /// The picture plus 4 pixels on each side.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

protected:
    bool DrawsText() const override { return false; }
    void TextFaceChanged() override;

private:
    /// The tooltip this button last set from its text; a different tooltip is the owner's.
    kelcore::string::string textToolTip;
};

}  // namespace kelui::controls
