// The screen shown when Share finds the chosen account over its storage limit (view 8): the
// header row with the sequence's icon and name and the sign-out menu, and a request to upgrade
// the account. Made by the screen manager for one screen and owned by the section that shows
// it; the name follows the view model through a binding that ends with the screen. Main thread.
//
//   boost::intrusive_ptr<StorageLimitExceededView> view(new StorageLimitExceededView(viewModel));
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

class StorageLimitExceededView final : public PopupBaseView {
public:
    /// Builds the label and the description, binds the label's name to the active sequence's
    /// name and shows itself. The sign-out item is enabled or not by the view model's state now.
    explicit StorageLimitExceededView(
        std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~StorageLimitExceededView() override;

    /// Keeps `rect`; with a drawing supplier, puts the label at (15, 10) and the description, as
    /// high as its wrapped text at 310, 15 above the bottom. Without one, the children stay.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    /// Always (340, 85).
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
