// The notice that the panel cannot share while the computer is offline: a disconnected-cloud
// icon and one line of text beside it, 16 high. The offline screen shows it alone; the end
// screen shows it between its header and its link row while the network is gone. Owned by the
// screen that holds it; main thread.
//
//   boost::intrusive_ptr<OfflineSection> offline(new OfflineSection);
//   ChildPushBack(offline);
//   offline->UI_SetLocalRectF({15.0f, y, 340.0f, 16.0f});
#pragma once

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_StaticImage.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/ui/UI_SubView.h>

namespace vantrokelui::view {

class OfflineSection final : public kelui::ui::UI_SubView {
public:
    /// Makes the icon and the text, shows both and itself.
    OfflineSection();
    ~OfflineSection() override;

    /// Places the icon (0, 0.5, 16, 16) and the text (21, 0.5, 289, 15); does nothing to them
    /// until the section has a drawing supplier.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    /// Always (340, 16).
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<kelui::controls::UI_StaticImage>& GetImage() const { return image; }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetText() const { return text; }

private:
    boost::intrusive_ptr<kelui::controls::UI_StaticImage> image;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> text;
};

}  // namespace vantrokelui::view
