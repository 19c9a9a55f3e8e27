// The location picker's folder step: the folders of the proposed project as a tree, filled from
// the cloud as rows open, with a header naming the project that leads back to the project step.
// Choosing a row proposes its folder (ProposedSelection); the shell commits it. The concrete
// view is hidden behind Create. Owned by the picker shell (boost::intrusive_ptr). Main thread.
//
//   auto folders = FolderPickerView::Create(viewModel);
//   folders->SetChooseFunction([weakShell] { ... the shell's Choose ... });
#pragma once

#include <functional>
#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <vantrokelui/view/SelectionBaseView.h>

namespace vantrokelui::viewmodel {
class ShareForReviewViewModel;
}

namespace vantrokelui::view {

class FolderPickerView : public SelectionBaseView {
public:
    /// The folder step for the view model's current user. Fill happens on UI_Show(true).
    static boost::intrusive_ptr<FolderPickerView> Create(
        const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel);

    /// Installs what Enter in the tree runs: the shell's Choose (commit and close). Empty
    /// (the default) lets Enter go on to the widgets around the tree.
    virtual void SetChooseFunction(std::function<void()> choose) = 0;

protected:
    using SelectionBaseView::SelectionBaseView;
};

}  // namespace vantrokelui::view
