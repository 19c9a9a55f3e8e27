#include <vantrokelui/view/MenuItems.h>

#include <kelcore/config/Localizer.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>

namespace vantrokelui::view {

using viewmodel::ShareForReviewViewModel;

MenuItem MakeCreateNewLinkItem(const std::shared_ptr<ShareForReviewViewModel>& viewModel) {
    MenuItem item;
    item.action = utility::WeakBindMemberFunction(std::weak_ptr<ShareForReviewViewModel>(viewModel),
                                                  &ShareForReviewViewModel::CreateNewLink);
    item.enabled = true;
    item.label = kelcore::config::Localizer::Get().GetString(
        "$$$/Corvane/vantrokelui/view/VantroShare/WorkflowLabel/CreateNewLink=Create new link");
    return item;
}

MenuItem MakeSignOutItem(const std::shared_ptr<ShareForReviewViewModel>& viewModel) {
    MenuItem item;
    item.action = utility::WeakBindMemberFunction(std::weak_ptr<ShareForReviewViewModel>(viewModel),
                                                  &ShareForReviewViewModel::Logout);
    item.enabled = viewModel && viewModel->GetIsNetworkConnected() && viewModel->GetIsLoggedIn();
    item.label = kelcore::config::Localizer::Get().GetString(
        "$$$/Corvane/vantrokelui/view/VantroShare/WorkflowLabel/SignOutOfVantro=Sign out of "
        "Vantro");
    return item;
}

}  // namespace vantrokelui::view
