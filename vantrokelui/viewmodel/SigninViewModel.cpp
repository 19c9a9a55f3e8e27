#include <vantrokelui/viewmodel/SigninViewModel.h>

#include <kelcore/debug/DebugDatabase.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

namespace vantrokelui::viewmodel {

std::shared_ptr<SigninViewModel> SigninViewModel::Create(
    const std::shared_ptr<ShareForReviewViewModel>& parent) {
    auto signin = std::make_shared<SigninViewModel>(ConstructionKey(), parent);
    const std::weak_ptr<SigninViewModel> weak = signin;
    signin->bindings.push_back(parent->AddIsLoggedInBinding(
        utility::WeakBindMemberFunction(weak, &IsLoggedInNotifyingProperty::SetIsLoggedIn)));
    signin->bindings.push_back(parent->AddActiveAssetNameBinding(utility::WeakBindMemberFunction(
        weak, &ActiveAssetNameNotifyingProperty::SetActiveAssetName)));
    return signin;
}

SigninViewModel::SigninViewModel(ConstructionKey,
                                 const std::shared_ptr<ShareForReviewViewModel>& parent)
    : IsLoggedInNotifyingProperty(false),
      PolicyVisibleNotifyingProperty(kelcore::debug::DebugDatabase::Instance().GetBoolEntry(
          "VantroNative.SignIn.PolicyLabelVisible", false)),
      AltSigninVisibleNotifyingProperty(kelcore::debug::DebugDatabase::Instance().GetBoolEntry(
          "VantroNative.SignIn.AltSigninVisible", false)) {
    const std::weak_ptr<ShareForReviewViewModel> weakParent = parent;
    login = utility::WeakBindMemberFunction(weakParent, &ShareForReviewViewModel::Login);
    setCurrentViewID = utility::WeakBindMemberFunction(
        weakParent, &CurrentViewIDNotifyingProperty::SetCurrentViewID);
}

SigninViewModel::~SigninViewModel() = default;

void SigninViewModel::Login() {
    login();
}

void SigninViewModel::SetCurrentViewID(ShareForReviewViewID id) {
    setCurrentViewID(id);
}

}  // namespace vantrokelui::viewmodel
