#include <vantrokelui/sharedui/StackViewBase.h>

namespace vantrokelui::sharedui {

kelcore::geom::PointT<float> StackViewBase::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    const std::vector<StackEntry> entries = ComputeLayout();
    kelcore::geom::RectT<float> bounds{};
    for (const StackEntry& entry : entries) {
        const auto rect = kelcore::geom::RectT<float>{entry.x, entry.y, entry.width, entry.height};
        if (bounds.IsEmpty()) {
            // Until something is in the union, the next entry stands for it, empty or not.
            bounds = rect;
        } else if (!rect.IsEmpty()) {
            const float left = std::min(bounds.Left(), rect.Left());
            const float top = std::min(bounds.Top(), rect.Top());
            const float right = std::max(bounds.Right(), rect.Right());
            const float bottom = std::max(bounds.Bottom(), rect.Bottom());
            bounds = kelcore::geom::RectT<float>::FromEdges(left, top, right, bottom);
        }
    }
    // The trailing spacing of the last entry lies outside the union and does not count.
    return {bounds.width + margins.left + margins.right,
            bounds.height + margins.top + margins.bottom};
}

void StackViewBase::SetMargins(float top, float left, float bottom, float right) {
    margins = Margins{top, left, bottom, right};
}

void StackViewBase::SetMargin(float margin) {
    SetMargins(margin, margin, margin, margin);
}

void StackViewBase::SetSpacing(float newSpacing) {
    spacing = newSpacing;
}

}  // namespace vantrokelui::sharedui
