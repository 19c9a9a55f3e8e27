// The panel's column, which every screen lays out in: a 340-wide view with its content from
// x = 15 to x = 325, the header row at (15, 10) and a bottom margin of 15, and the placing that
// screens repeat in it. Private to the views' sources; main thread.
#pragma once

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelui/ui/UI_Node.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/view/WorkflowLabel.h>

namespace vantrokelui::view::detail {

inline constexpr float kViewWidth = 340.0f;
inline constexpr float kColumnLeft = 15.0f;
inline constexpr float kColumnWidth = 310.0f;
inline constexpr float kColumnRight = kColumnLeft + kColumnWidth;
inline constexpr float kLabelTop = 10.0f;
inline constexpr float kBottomMargin = 15.0f;

/// Puts `node` at (column's left, `y`) at its recommended size; answers that size.
inline kelcore::geom::PointT<float> PlaceInColumn(
    const boost::intrusive_ptr<kelui::ui::UI_Node>& node, float y) {
    const kelcore::geom::PointT<float> size = sharedui::GetRecommendedSize(node);
    node->UI_SetLocalRectF({kColumnLeft, y, size.x, size.y});
    return size;
}

/// Puts the header row at the top of the column; answers its height.
inline float PlaceWorkflowLabel(const boost::intrusive_ptr<WorkflowLabel>& label) {
    return PlaceInColumn(label, kLabelTop).y;
}

}  // namespace vantrokelui::view::detail
