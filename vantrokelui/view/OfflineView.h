// The screen for a panel that opened, or went, offline with nothing to show (view 7): the header
// row with the sequence's icon and name and no menu, so nobody can sign out from here, and the
// offline notice. Made by the screen manager for one screen and owned by the section that shows
// it; the name follows the view model through a binding that ends with the screen. Main thread.
//
//   boost::intrusive_ptr<OfflineView> view(new OfflineView(viewModel));
//   section->SetContent(view);
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <vantrokelui/view/OfflineSection.h>
#include <vantrokelui/view/PopupBaseView.h>
#include <vantrokelui/view/WorkflowLabel.h>

namespace vantrokelui::view {

class OfflineView final : public PopupBaseView {
public:
    /// Builds the label and the offline notice, binds the label's name to the active sequence's
    /// name and shows itself.
    explicit OfflineView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~OfflineView() override;

    /// Keeps `rect`; with a drawing supplier, puts the label at (15, 10) and the notice, in its
    /// recommended size, 15 above the bottom. Without one, the children stay where they are.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    /// Always (340, 70).
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<WorkflowLabel>& GetWorkflowLabel() const { return workflowLabel; }
    const boost::intrusive_ptr<OfflineSection>& GetOfflineSection() const { return offlineSection; }

private:
    boost::intrusive_ptr<WorkflowLabel> workflowLabel;
    boost::intrusive_ptr<OfflineSection> offlineSection;
};

}  // namespace vantrokelui::view
