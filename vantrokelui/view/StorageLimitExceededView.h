// The screen shown when Share finds the chosen account over its storage limit (view 8): the
// header row with the sequence's icon and name and the sign-out menu, and a request to upgrade
// the account. Made by the screen manager for one screen and owned by the section that shows
// it; the name follows the view model through a binding that ends with the screen. Main thread.
//
//   boost::intrusive_ptr<StorageLimitExceededView> view(new StorageLimitExceededView(viewModel));
//   section->SetContent(view);
#pragma once

#include <memory>

#include <vantrokelui/view/MessageScreenView.h>

namespace vantrokelui::view {

class StorageLimitExceededView final : public MessageScreenView {
public:
    /// Builds the label and the description (as high as its wrapped text), binds the label's
    /// name to the active sequence's name and shows itself; (340, 85). The sign-out item is
    /// enabled or not by the view model's state now.
    explicit StorageLimitExceededView(
        std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~StorageLimitExceededView() override;
};

}  // namespace vantrokelui::view
