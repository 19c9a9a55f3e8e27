// The screen for a machine without the encoding application (view 5): the header row with a
// fixed name in italics and the sign-out menu, and a request to install the application. Made
// by the screen manager for one screen and owned by the section that shows it. Main thread.
//
//   boost::intrusive_ptr<NoAssetProcessorView> view(new NoAssetProcessorView(viewModel));
//   section->SetContent(view);
#pragma once

#include <memory>

#include <vantrokelui/view/MessageScreenView.h>

namespace vantrokelui::view {

class NoAssetProcessorView final : public MessageScreenView {
public:
    /// Builds the label and the two-line description and shows itself; (340, 85). The sign-out
    /// item is enabled or not by the view model's state now.
    explicit NoAssetProcessorView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~NoAssetProcessorView() override;
};

}  // namespace vantrokelui::view
