// The screen for a panel opened without an active sequence (view 6): the header row with a fixed
// name in italics and the sign-out menu, and one line asking the user to select a sequence. Made
// by the screen manager for one screen and owned by the section that shows it. Main thread.
//
//   boost::intrusive_ptr<NoAssetView> view(new NoAssetView(viewModel));
//   section->SetContent(view);
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_StaticText.h>
#include <vantrokelui/view/PopupBaseView.h>
#include <vantrokelui/view/WorkflowLabel.h>

namespace vantrokelui::view {

class NoAssetView final : public PopupBaseView {
public:
    /// Builds the label and the one-line description and shows itself. The sign-out item is
    /// enabled or not by the view model's state now.
    explicit NoAssetView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~NoAssetView() override;

    /// Keeps `rect`; with a drawing supplier, puts the label at (15, 10) and the description
    /// 30 above the bottom. Without one, the children stay where they are.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    /// Always (340, 70).
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<WorkflowLabel>& GetWorkflowLabel() const { return workflowLabel; }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetDescriptionText() const {
        return descriptionText;
    }

private:
    boost::intrusive_ptr<WorkflowLabel> workflowLabel;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> descriptionText;
};

}  // namespace vantrokelui::view
