// The body of a popup window or a dialog: the view that the window's content node is pushed into
// (ChildPushBack), filling the window. It paints the panel's background and reports how the
// window scales its content. Made and owned by its window node (UI_TouchPopupContainer,
// UI_Dialog), which is its parent node, so content can walk up to the window with
// UI_GetParentNode. Main thread.
//
//   popup->GetContainer()->ChildPushBack(mainView);
//   const auto factors = popup->GetContainer()->GetScaleFactors();  // factors[2], factors[3]
#pragma once

#include <array>

#include <kelui/ui/UI_SubView.h>

namespace kelui::controls {

class OS_ViewContainer : public ui::UI_SubView {
public:
    OS_ViewContainer() = default;

    /// Four factors: device pixels per layout unit in x and y (the screen's device pixel ratio,
    /// which Qt applies by itself), then the x and y scale of the content within the window.
    /// Qt lays windows out in device-independent units, so the content scale is 1 and 1.
    std::array<float, 4> GetScaleFactors() const;

    /// Fills the body with the panel's background (palette gray 1).
    void UI_Draw(limner::Limner& limner) override;
};

}  // namespace kelui::controls
