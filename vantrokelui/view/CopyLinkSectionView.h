// The end screen of a share (view 10): the header row with the sequence's name, the review link
// with its Copy button and, on demand, the offline notice between them and the strip that offers
// to share the changed sequence again. Made by the screen manager and owned by the section that
// shows it; it follows the sequence's modified mark and the network through bindings that end
// with it, and asks the screen manager to size the popup again when either changes what it
// shows. Main thread.
//
//   boost::intrusive_ptr<CopyLinkSectionView> view(new CopyLinkSectionView(viewModel));
//   section->SetContent(view);
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <vantrokelui/view/CopyLinkSection.h>
#include <vantrokelui/view/OfflineSection.h>
#include <vantrokelui/view/PopupBaseView.h>
#include <vantrokelui/view/UpdateContentView.h>
#include <vantrokelui/view/WorkflowLabel.h>

namespace vantrokelui::view {

class CopyLinkSectionView final : public PopupBaseView {
public:
    /// Builds the children, shows what the network and the modified mark of this moment call
    /// for, binds to the view model and shows itself. The header's menu signs out or starts a
    /// new link.
    explicit CopyLinkSectionView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~CopyLinkSectionView() override;

    /// Places the children in the 15-pixel column: the header, the offline notice while
    /// offline, the link row, and the update strip across the whole width below it. Does nothing
    /// to them until the view has a drawing supplier.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    /// 340 wide; 75 high, plus the update strip while the sequence is modified, plus the offline
    /// notice and its gap while offline.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<WorkflowLabel>& GetWorkflowLabel() const { return workflowLabel; }
    const boost::intrusive_ptr<OfflineSection>& GetOfflineSection() const { return offlineSection; }
    const boost::intrusive_ptr<CopyLinkSection>& GetCopyLinkSection() const {
        return copyLinkSection;
    }
    const boost::intrusive_ptr<UpdateContentView>& GetUpdateContentView() const {
        return updateContentView;
    }

private:
    /// Does nothing when the mark is what the screen shows already.
    void OnDirtyChanged(bool dirty);
    /// Does nothing when the network is as the screen shows it already.
    void OnNetworkChanged(bool connected);
    /// Shows and enables the parts for the present state, then asks for a new size: each real
    /// change flips InvalidateParentForChild once, so two changes never merge into none.
    void Relayout();
    /// What the update strip adds to the screen's height.
    float GetUpdateContentHeight() const;

    boost::intrusive_ptr<WorkflowLabel> workflowLabel;
    boost::intrusive_ptr<OfflineSection> offlineSection;
    boost::intrusive_ptr<CopyLinkSection> copyLinkSection;
    boost::intrusive_ptr<UpdateContentView> updateContentView;
    bool isOffline = false;
    bool isDirty = false;
};

}  // namespace vantrokelui::view
