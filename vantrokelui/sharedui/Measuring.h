// The two measuring helpers every view lays itself out with. Each makes a measuring limner from
// the node's drawing supplier (or the toolkit's default one for a node outside any window), so
// a view can be measured before it is on screen. Main thread.
//
//   const auto size = sharedui::GetRecommendedSize(section);          // whole pixels
//   const float height = sharedui::MeasureTextHeight(description, 310.0f);
#pragma once

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/ui/UI_Node.h>

namespace vantrokelui::sharedui {

/// The node's recommended size, rounded up to whole pixels.
kelcore::geom::PointT<float> GetRecommendedSize(
    const boost::intrusive_ptr<kelui::ui::UI_Node>& node);

/// The height of the text control's text wrapped at `width` in the control's font, rounded up.
/// An empty text measures what the font gives for it (one line), not 0.
float MeasureTextHeight(const boost::intrusive_ptr<kelui::controls::UI_StaticText>& text,
                        float width);

}  // namespace vantrokelui::sharedui
