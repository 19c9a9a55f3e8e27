#include <vantrokelui/view/NoAssetProcessorView.h>

#include <vantrokelui/view/MenuItems.h>

#include "StatusViewSupport.h"

namespace vantrokelui::view {

NoAssetProcessorView::NoAssetProcessorView(
    std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    // No icon: the label sets the fixed name in italics, as a message rather than a sequence.
    : MessageScreenView(
          model, nullptr, {MakeSignOutItem(model)},
          {detail::Localized("$$$/Corvane/vantrokelui/view/VantroShare/"
                             "NoAssetProcessorView/DescriptionText=Please install "
                             "the latest version of Tessaly Sarvex to create a link."),
           2},
          85.0f) {
    GetWorkflowLabel()->SetName(detail::Localized(
        "$$$/Corvane/vantrokelui/view/VantroShare/NoAssetProcessorView/WorkflowLabel=Sarvex not "
        "installed"));
}

NoAssetProcessorView::~NoAssetProcessorView() = default;

}  // namespace vantrokelui::view
