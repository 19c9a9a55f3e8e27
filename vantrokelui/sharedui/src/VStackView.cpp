#include <vantrokelui/sharedui/VStackView.h>

#include <algorithm>

#include <vantrokelui/sharedui/Measuring.h>

namespace vantrokelui::sharedui {

std::vector<StackEntry> VStackView::ComputeLayout() {
    std::vector<StackEntry> entries;
    entries.reserve(ChildCount());
    for (const auto& node : GetChildren()) {
        StackEntry entry;
        entry.child = kelui::ui::NodeCast<kelui::ui::UI_SubView>(node);
        if (entry.child && entry.child->UI_IsViewVisible()) {
            const auto size = GetRecommendedSize(node);
            entry.width = size.x;
            entry.height = size.y;
        }
        entries.push_back(entry);
    }
    float maxWidth = 0.0f;
    for (const StackEntry& entry : entries) {
        maxWidth = std::max(maxWidth, entry.width);
    }
    float y = GetMargins().top;
    for (StackEntry& entry : entries) {
        entry.width = maxWidth;  // hidden entries too
        entry.x = GetMargins().left;
        entry.y = y;
        y += entry.height;
        if (entry.width > 0.0f && entry.height > 0.0f) {
            y += GetSpacing();
        }
    }
    return entries;
}

void VStackView::UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) {
    StackViewBase::UI_SetLocalRectF(rect);
    for (StackEntry& entry : ComputeLayout()) {
        entry.width = rect.width - GetMargins().left - GetMargins().right;
        if (entry.child) {
            entry.child->UI_SetLocalRectF({entry.x, entry.y, entry.width, entry.height});
        }
    }
}

}  // namespace vantrokelui::sharedui
