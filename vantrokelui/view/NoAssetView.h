// The screen for a panel opened without an active sequence (view 6): the header row with a fixed
// name in italics and the sign-out menu, and one line asking the user to select a sequence. Made
// by the screen manager for one screen and owned by the section that shows it. Main thread.
//
//   boost::intrusive_ptr<NoAssetView> view(new NoAssetView(viewModel));
//   section->SetContent(view);
#pragma once

#include <memory>

#include <vantrokelui/view/MessageScreenView.h>

namespace vantrokelui::view {

class NoAssetView final : public MessageScreenView {
public:
    /// Builds the label and the one-line description and shows itself; (340, 70). The sign-out
    /// item is enabled or not by the view model's state now.
    explicit NoAssetView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~NoAssetView() override;
};

}  // namespace vantrokelui::view
