// Setting the user, logout on both back ends, the older library's login, and the sign-in
// screen's view model. The newer library's login needs the service: ViewModelServiceTest.

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/config/ResultCode.h>
#include <kelcore/config/kel_exception.h>
#include <vantrokelui/viewmodel/SigninViewModel.h>

#include "ViewModelFixture.h"
#include "vantrokelui/support/UserOnlyDatastore.h"

namespace vantrokelui::viewmodel::testing {
namespace {

/// A user that counts the fetches of its accounts.
class CountingUser : public VantroUser {
public:
    void FetchChildren() override {
        ++fetches;
        VantroUser::FetchChildren();
    }
    int fetches = 0;
};

class ViewModelSigninTest : public ViewModelFixture {
protected:
    /// Records each delivered user.
    void RecordUsers() {
        userBinding = viewModel->AddUserBinding(
            [this](const std::shared_ptr<VantroUser>& user) { users.push_back(user); });
        Pump();
        users.clear();
    }
    std::shared_ptr<utility::DataBinding> userBinding;
    std::vector<std::shared_ptr<VantroUser>> users;
};

TEST_F(ViewModelSigninTest, TheViewModelStartsWithAPlainUserWhoseAccountsAreAskedFor) {
    const auto user = viewModel->GetUser();
    ASSERT_NE(user, nullptr);
    EXPECT_EQ(user->GetID(), Guid());
    EXPECT_EQ(user->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_FALSE(viewModel->GetIsLoggedIn());
}

TEST_F(ViewModelSigninTest, ANewUserIsDeliveredAndFetched) {
    RecordUsers();
    auto user = std::make_shared<CountingUser>();
    viewModel->SetUser(user);
    Pump();
    EXPECT_EQ(users, (std::vector<std::shared_ptr<VantroUser>>{user}));
    EXPECT_EQ(user->fetches, 1);
}

TEST_F(ViewModelSigninTest, TheSameUserAgainIsNotDeliveredButFetchedAgain) {
    auto user = std::make_shared<CountingUser>();
    viewModel->SetUser(user);
    RecordUsers();
    viewModel->SetUser(user);
    Pump();
    EXPECT_TRUE(users.empty());
    EXPECT_EQ(user->fetches, 2);
}

TEST_F(ViewModelSigninTest, ANullUserIsAContractViolation) {
    const auto before = viewModel->GetUser();
    try {
        viewModel->SetUser(nullptr);
        FAIL() << "a null user was taken";
    } catch (const kelcore::config::kel_exception& error) {
        EXPECT_EQ(error.GetText(), "Contract violation: User property may not be set to null.");
        EXPECT_EQ(error.GetCode(), kelcore::config::kResultContractViolation);
    }
    EXPECT_EQ(viewModel->GetUser(), before);
}

TEST_F(ViewModelSigninTest, LogoutClearsLoginThenUserThenClosesThePanel) {
    const LocalTree tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    viewModel->SetIsLoggedIn(true);
    Open();
    ASSERT_EQ(View(), ViewID::ReviewInVantro);
    std::vector<std::string> order;
    std::vector<std::shared_ptr<utility::DataBinding>> bindings;
    bindings.push_back(viewModel->AddIsLoggedInBinding(
        [&](bool value) { order.push_back(value ? "IsLoggedIn=true" : "IsLoggedIn=false"); }));
    bindings.push_back(viewModel->AddUserBinding([&](const std::shared_ptr<VantroUser>& user) {
        order.push_back(user == tree.user ? "User=tree" : "User=other");
    }));
    bindings.push_back(viewModel->AddCurrentViewIDBinding(
        [&](ViewID id) { order.push_back("View=" + std::to_string(static_cast<int>(id))); }));
    Pump();
    order.clear();

    // The sign-in library was never started here, so its sign-out fails: local state goes all
    // the same.
    viewModel->Logout();
    Pump();
    EXPECT_EQ(order, (std::vector<std::string>{"IsLoggedIn=false", "User=other", "View=0"}));
    EXPECT_FALSE(viewModel->GetIsLoggedIn());
    EXPECT_NE(viewModel->GetUser(), tree.user);
    EXPECT_EQ(viewModel->GetUser()->GetID(), Guid());
    EXPECT_EQ(View(), ViewID::None);
    viewModel->SetCurrentViewID(ViewID::ReviewInVantro);
    EXPECT_EQ(View(), ViewID::None) << "logout must close the gate";
}

TEST_F(ViewModelSigninTest, LogoutWithTheOlderLibrarySignsOutOfTheDatastoreTwice) {
    auto datastore = std::make_shared<vantrokeluitest::UserOnlyDatastore>();
    vantrokeluitest::UserOnlyDatastore::Installation installed(datastore);
    SetKey("VantroNative.UseVantroCppSdk", "false");
    viewModel->SetCurrentViewID(ViewID::SigninPrompt);
    viewModel->Logout();
    EXPECT_EQ(datastore->SignOuts(), (std::vector<std::string>{"SignOutJwt", "SignOutOAuth2"}));
    EXPECT_EQ(View(), ViewID::None);
}

TEST_F(ViewModelSigninTest, LogoutWithTheNewerLibraryLeavesTheDatastoreAlone) {
    auto datastore = std::make_shared<vantrokeluitest::UserOnlyDatastore>();
    vantrokeluitest::UserOnlyDatastore::Installation installed(datastore);
    viewModel->Logout();
    EXPECT_TRUE(datastore->SignOuts().empty());
    // The key is read at each call.
    SetKey("VantroNative.UseVantroCppSdk", "false");
    viewModel->Logout();
    EXPECT_EQ(datastore->SignOuts().size(), 2u);
}

TEST_F(ViewModelSigninTest, TheOlderLibrarysLoginSetsTheUserAndShowsTheShareScreen) {
    auto datastore = std::make_shared<vantrokeluitest::UserOnlyDatastore>();
    vantrokeluitest::UserOnlyDatastore::Installation installed(datastore);
    const Guid id = Guid::CreateUnique();
    datastore->SetCurrentUser(id, "ann");
    SetKey("VantroNative.UseVantroCppSdk", "false");
    Open();
    ASSERT_EQ(View(), ViewID::SigninPrompt);
    viewModel->Login();
    PumpUntil([&] { return View() == ViewID::ReviewInVantro; });
    EXPECT_EQ(viewModel->GetUser()->GetID(), id);
    EXPECT_FALSE(viewModel->GetIsLoggedIn()) << "the older library never sets IsLoggedIn";
    // The next open judges by the user's id.
    viewModel->SetCurrentViewID(ViewID::None);
    Open();
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
}

TEST_F(ViewModelSigninTest, TheOlderLibrarysLoginAfterTheViewModelHasGoneDoesNothing) {
    auto datastore = std::make_shared<vantrokeluitest::UserOnlyDatastore>();
    vantrokeluitest::UserOnlyDatastore::Installation installed(datastore);
    datastore->SetCurrentUser(Guid::CreateUnique(), "ann");
    SetKey("VantroNative.UseVantroCppSdk", "false");
    viewModel->Login();
    ASSERT_EQ(datastore->CurrentUserRequests(), 1);
    const std::weak_ptr<ShareForReviewViewModel> weak = viewModel;
    viewBinding.reset();
    viewModel.reset();
    EXPECT_TRUE(weak.expired()) << "a pending login must not keep the view model alive";
    EXPECT_GE(Pump(), 1u);  // the answer arrives and finds no one
}

// ---- the sign-in screen's view model ----------------------------------------------------------

TEST_F(ViewModelSigninTest, TheSigninViewModelMirrorsLoginAndSequenceNameOneDeliveryLater) {
    viewModel->SetIsLoggedIn(true);
    viewModel->SetActiveAssetName(u"Cut 2");
    const auto signin = SigninViewModel::Create(viewModel);
    EXPECT_FALSE(signin->GetIsLoggedIn());
    EXPECT_EQ(signin->GetActiveAssetName(), u"");
    Pump();
    EXPECT_TRUE(signin->GetIsLoggedIn());
    EXPECT_EQ(signin->GetActiveAssetName(), u"Cut 2");
    viewModel->SetIsLoggedIn(false);
    EXPECT_TRUE(signin->GetIsLoggedIn());
    Pump();
    EXPECT_FALSE(signin->GetIsLoggedIn());
}

TEST_F(ViewModelSigninTest, TheSigninViewModelReadsItsTwoSwitches) {
    {
        const auto signin = SigninViewModel::Create(viewModel);
        EXPECT_FALSE(signin->GetPolicyVisible());
        EXPECT_FALSE(signin->GetAltSigninVisible());
    }
    SetKey("VantroNative.SignIn.PolicyLabelVisible", "true");
    {
        const auto signin = SigninViewModel::Create(viewModel);
        EXPECT_TRUE(signin->GetPolicyVisible());
        EXPECT_FALSE(signin->GetAltSigninVisible());
    }
    SetKey("VantroNative.SignIn.PolicyLabelVisible", "yes");
    SetKey("VantroNative.SignIn.AltSigninVisible", "true");
    const auto signin = SigninViewModel::Create(viewModel);
    EXPECT_FALSE(signin->GetPolicyVisible());
    EXPECT_TRUE(signin->GetAltSigninVisible());
}

TEST_F(ViewModelSigninTest, TheSigninViewReportingAUserMovesTheSignInPromptToTheShareScreen) {
    Open();
    ASSERT_EQ(View(), ViewID::SigninPrompt);
    const auto signin = SigninViewModel::Create(viewModel);
    signin->SetCurrentViewID(ViewID::ReviewInVantro);
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
}

TEST_F(ViewModelSigninTest, TheSigninViewModelsForwardsGoThroughTheGate) {
    viewModel->SetCurrentViewID(ViewID::None);
    const auto signin = SigninViewModel::Create(viewModel);
    signin->SetCurrentViewID(ViewID::ReviewInVantro);
    EXPECT_EQ(View(), ViewID::None);
}

TEST_F(ViewModelSigninTest, TheSigninViewModelsLoginIsTheParentsLogin) {
    auto datastore = std::make_shared<vantrokeluitest::UserOnlyDatastore>();
    vantrokeluitest::UserOnlyDatastore::Installation installed(datastore);
    const Guid id = Guid::CreateUnique();
    datastore->SetCurrentUser(id, "ann");
    SetKey("VantroNative.UseVantroCppSdk", "false");
    Open();
    const auto signin = SigninViewModel::Create(viewModel);
    signin->Login();
    PumpUntil([&] { return View() == ViewID::ReviewInVantro; });
    EXPECT_EQ(viewModel->GetUser()->GetID(), id);
}

TEST_F(ViewModelSigninTest, TheSigninViewModelDoesNothingOnceTheParentHasGone) {
    auto datastore = std::make_shared<vantrokeluitest::UserOnlyDatastore>();
    vantrokeluitest::UserOnlyDatastore::Installation installed(datastore);
    SetKey("VantroNative.UseVantroCppSdk", "false");
    const auto signin = SigninViewModel::Create(viewModel);
    viewBinding.reset();
    viewModel.reset();
    signin->Login();
    signin->SetCurrentViewID(ViewID::ReviewInVantro);
    EXPECT_EQ(datastore->CurrentUserRequests(), 0);
}

}  // namespace
}  // namespace vantrokelui::viewmodel::testing
