// The "more" menu: the same list as UI_Popup, opened from an icon-only button (18 × 18) that
// draws nothing but the picture of its image supply function. Every pick is a command: the owner
// usually sets the value back to -1 after acting on it.
// Screen readers hear "More" unless the owner names it. Main thread.
//
//   boost::intrusive_ptr<UI_PicturePopup> more(new UI_PicturePopup);
//   more->SetImageSupplyFunction(moreIcon);
//   more->AddItem(u"Sign out", -1);
#pragma once

#include <kelui/controls/UI_Popup.h>

namespace kelui::controls {

class UI_PicturePopup : public UI_Popup {
public:
    UI_PicturePopup() = default;

    /// Always 18 × 18.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    /// The picture, centred at its natural size (scaled down to fit), over the hover background.
    void UI_Draw(limner::Limner& limner) override;

protected:
    /// Below the button, right edges aligned: the button sits at the right of its row.
    QPoint GetMenuPosition(int menuWidth) const override;
    int GetMenuMinimumWidth() const override { return 0; }
    /// "More", localised.
    kelcore::string::string GetFallbackAccessibleName() const override;
};

}  // namespace kelui::controls
