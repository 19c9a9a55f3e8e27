#include <vantrokelui/view/StorageLimitExceededView.h>

#include <kelui/ui/WeakNodeFunction.h>

#include <vantrokelui/view/MenuItems.h>

#include "StatusViewSupport.h"

namespace vantrokelui::view {

StorageLimitExceededView::StorageLimitExceededView(
    std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : MessageScreenView(model, model->GetAssetTypeIcon(), {MakeSignOutItem(model)},
                        {detail::Localized("$$$/Corvane/vantrokelui/view/VantroShare/"
                                           "StorageLimitExceededView/DescriptionText=You've "
                                           "reached your storage limit. Upgrade your Vantro "
                                           "account for more storage."),
                         0},
                        85.0f) {
    bindings.push_back(viewModel->AddActiveAssetNameBinding(
        kelui::ui::WeakNodeFunction(GetWorkflowLabel().get(), &WorkflowLabel::SetName)));
}

StorageLimitExceededView::~StorageLimitExceededView() = default;

}  // namespace vantrokelui::view
