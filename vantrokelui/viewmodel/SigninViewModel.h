// The sign-in screen's small view model: a mirror of the panel's IsLoggedIn and ActiveAssetName
// (one main-thread delivery behind the panel's view model), the two configuration switches of
// the screen, and two forwarders into the panel's view model (Login and the view setter). Owned
// by the sign-in view through std::shared_ptr; holds the panel's view model only weakly, so a
// late click after the panel has gone does nothing. Made by Create on the main thread; Login and
// SetCurrentViewID on the main thread.
//
//   auto signin = viewmodel::SigninViewModel::Create(panelViewModel);
//   signin->Login();
#pragma once

#include <functional>
#include <memory>

#include <kelcore/utility/EnableSharedAs.h>
#include <vantrokelui/utility/ActiveAssetNameNotifyingProperty.h>
#include <vantrokelui/utility/DataBindingTarget.h>
#include <vantrokelui/utility/IsLoggedInNotifyingProperty.h>
#include <vantrokelui/viewmodel/AltSigninVisibleNotifyingProperty.h>
#include <vantrokelui/viewmodel/PolicyVisibleNotifyingProperty.h>
#include <vantrokelui/viewmodel/ShareForReviewViewID.h>

namespace vantrokelui::viewmodel {

class ShareForReviewViewModel;

class SigninViewModel : public IsLoggedInNotifyingProperty,
                        public ActiveAssetNameNotifyingProperty,
                        public PolicyVisibleNotifyingProperty,
                        public AltSigninVisibleNotifyingProperty,
                        public utility::DataBindingTarget,
                        public virtual kelcore::utility::EnableSharedAs {
    struct ConstructionKey {
        explicit ConstructionKey() = default;
    };

public:
    /// Binds the mirror to `parent`'s IsLoggedIn and ActiveAssetName. Main thread.
    static std::shared_ptr<SigninViewModel> Create(
        const std::shared_ptr<ShareForReviewViewModel>& parent);

    SigninViewModel(ConstructionKey, const std::shared_ptr<ShareForReviewViewModel>& parent);
    ~SigninViewModel() override;

    /// The parent's Login, if it still lives.
    void Login();
    /// The parent's view setter (with its gate), if it still lives.
    void SetCurrentViewID(ShareForReviewViewID id);

private:
    std::function<void()> login;
    std::function<void(ShareForReviewViewID)> setCurrentViewID;
};

}  // namespace vantrokelui::viewmodel
