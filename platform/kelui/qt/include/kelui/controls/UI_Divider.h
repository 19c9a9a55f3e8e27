// A thin rule that separates two parts of a panel: one pixel high, across the whole width of
// its rectangle and centred in its height, in the theme's palette gray 3, so it reads as a
// quiet line in light and dark themes. Held by intrusive pointer like every node; main thread.
//
//   boost::intrusive_ptr<UI_Divider> rule(new UI_Divider);
//   rule->UI_SetLocalRectF({15.0f, y, 310.0f, 1.0f});
#pragma once

#include <kelcore/geom/PointT.h>
#include <kelui/controls/UI_ControlView.h>

namespace kelui::controls {

class UI_Divider : public UI_ControlView {
public:
    UI_Divider() = default;

    /// The present width and one pixel.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    void UI_Draw(limner::Limner& limner) override;
};

}  // namespace kelui::controls
