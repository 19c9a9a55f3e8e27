#include <vantrokelui/view/NoAssetView.h>

#include <vantrokelui/view/MenuItems.h>

#include "StatusViewSupport.h"

namespace vantrokelui::view {

NoAssetView::NoAssetView(std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    // No icon: the label sets the fixed name in italics, as a message rather than a sequence.
    : MessageScreenView(model, nullptr, {MakeSignOutItem(model)},
                        {detail::Localized("$$$/Corvane/vantrokelui/view/VantroShare/NoAssetView/"
                                           "DescriptionText=Select a sequence to share."),
                         1},
                        70.0f) {
    GetWorkflowLabel()->SetName(detail::Localized(
        "$$$/Corvane/vantrokelui/view/VantroShare/NoAssetView/WorkflowLabel=No source detected"));
}

NoAssetView::~NoAssetView() = default;

}  // namespace vantrokelui::view
