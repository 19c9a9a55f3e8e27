// The screen manager: one section of a workflow host whose content is the screen of the view
// model's CurrentViewID, remade at every change; nothing is cached between screens. Holds the
// view model and the host strongly and the section by reference; its two bindings are weak, so
// a delivery during its destruction does nothing. Main thread.
#pragma once

#include <boost/intrusive_ptr.hpp>

#include <vantrokelui/sharedui/WorkflowSectionView.h>
#include <vantrokelui/utility/DataBindingTarget.h>
#include <vantrokelui/view/ShareForReviewScreenManager.h>

namespace vantrokelui::view {

class ShareForReviewScreenManagerImpl final : public ShareForReviewScreenManager,
                                              public utility::DataBindingTarget {
public:
    ShareForReviewScreenManagerImpl(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel,
                                    std::shared_ptr<sharedui::WorkflowBase> workflow);
    ~ShareForReviewScreenManagerImpl() override;

    /// Subscribes to CurrentViewID and InvalidateParentForChild; the first delivery brings up
    /// the present screen.
    void BindViewModel();

    const boost::intrusive_ptr<sharedui::WorkflowSectionView>& GetSection() const {
        return section;
    }

private:
    void OnCurrentViewIDChanged(ShareForReviewViewID id);
    void OnInvalidateParentForChild(bool);

    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
    std::shared_ptr<sharedui::WorkflowBase> workflow;
    boost::intrusive_ptr<sharedui::WorkflowSectionView> section;
};

}  // namespace vantrokelui::view
