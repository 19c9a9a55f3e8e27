// A vertical stack: children one below the other, each as wide as the widest, with the stack's
// spacing after every child that takes up room. A hidden child takes none: it adds neither
// height nor spacing. Main thread.
#pragma once

#include <vantrokelui/sharedui/StackViewBase.h>

namespace vantrokelui::sharedui {

class VStackView : public StackViewBase {
public:
    /// Keeps `rect`, then gives every child its laid-out rectangle at the stack's own width
    /// less the margins, whatever width the child recommended.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    std::vector<StackEntry> ComputeLayout() override;
};

}  // namespace vantrokelui::sharedui
