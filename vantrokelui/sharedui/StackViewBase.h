// A view that lays its children out as a stack: margins around them and spacing between them.
// A derived stack says where each child goes (ComputeLayout); the base turns that into the
// stack's recommended size. Nothing is cached: each query lays out again, which is cheap for the
// few children of a screen. Main thread.
//
//   stack->SetMargin(1.0f);
//   stack->SetSpacing(1.0f);
#pragma once

#include <vector>

#include <kelui/ui/UI_SubView.h>
#include <vantrokelui/sharedui/StackEntry.h>

namespace vantrokelui::sharedui {

class StackViewBase : public kelui::ui::UI_SubView {
public:
    struct Margins {
        float top = 0.0f;
        float left = 0.0f;
        float bottom = 0.0f;
        float right = 0.0f;
    };

    /// The size of the union of the laid-out children plus the margins. An empty child adds
    /// nothing, so a stack of hidden children recommends just its margins.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

    /// Where each child goes, in child order.
    virtual std::vector<StackEntry> ComputeLayout() = 0;

    const Margins& GetMargins() const { return margins; }
    void SetMargins(float top, float left, float bottom, float right);
    /// The same margin on all four sides.
    void SetMargin(float margin);
    float GetSpacing() const { return spacing; }
    void SetSpacing(float newSpacing);

private:
    Margins margins;
    float spacing = 0.0f;
};

}  // namespace vantrokelui::sharedui
