// The view model against the real vantro-server with the real sign-in libraries: sign-in by the
// browser and by a stored token, the tree restoring the stored folder, and the storage check.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vantroauth/BrowserOpener.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrokelui/model/connector/SignIn.h>
#include <vantrokelui/model/connector/UserFunctions.h>
#include <vantrokelui/nodes/VantroAccount.h>

#include "ViewModelWorldFixture.h"
#include "support/TestBrowser.h"

namespace vantrokelui::viewmodel::testing {
namespace {

namespace integration = model::VantroConnectorIntegration;
using testsupport::TestBrowser;

class ViewModelServiceTest : public ViewModelWorldFixture {};

TEST_F(ViewModelServiceTest, AnOpenWithoutATokenAsksToSignInAndTheBrowserSignInMovesOn) {
    StartWorldWithViewModel();
    TestBrowser browser({.username = kUser, .password = kPassword});
    vantroauth::SetBrowserOpener(browser.Opener());
    Open();
    Pump();
    ASSERT_EQ(View(), ViewID::SigninPrompt);
    EXPECT_TRUE(browser.Visits().empty()) << "the open must not start a browser sign-in";

    viewModel->Login();
    ASSERT_TRUE(PumpUntil([&] { return View() == ViewID::ReviewInVantro; }));
    EXPECT_TRUE(viewModel->GetIsLoggedIn());
    EXPECT_EQ(workflowRuns.load(), 2);
    EXPECT_EQ(workflowRunsOffMainThread.load(), 0) << "the decision must run on the main thread";
    // The user comes from the service and its accounts are fetched.
    ASSERT_TRUE(PumpUntil([&] { return !viewModel->GetUser()->GetAccounts().empty(); }));
    EXPECT_EQ(viewModel->GetUser()->GetAccounts()[0]->GetName(), u"Studio");
    Pump();
    EXPECT_EQ(delivered, (std::vector<ViewID>{ViewID::SigninPrompt, ViewID::ReviewInVantro}));
}

TEST_F(ViewModelServiceTest, AStoredTokenMovesOnFromTheSignInPromptWithoutAClick) {
    StartWorldWithViewModel();
    StoreToken();
    TestBrowser browser({.username = kUser, .password = kPassword});
    vantroauth::SetBrowserOpener(browser.Opener());
    Open();
    // The quiet sign-in answers on the SDK's executor, so it may land before the open decides
    // (straight to 4) or after it (9, then 4 without a click). Either way no browser is asked.
    const bool decidedFirst = View() == ViewID::SigninPrompt;
    if (!decidedFirst) {
        EXPECT_EQ(View(), ViewID::ReviewInVantro);
        EXPECT_TRUE(viewModel->GetIsLoggedIn());
    }
    ASSERT_TRUE(PumpUntil([&] {
        return View() == ViewID::ReviewInVantro && viewModel->GetUser()->GetID() != Guid();
    }));
    Pump();
    EXPECT_EQ(delivered, decidedFirst
                             ? (std::vector<ViewID>{ViewID::SigninPrompt, ViewID::ReviewInVantro})
                             : (std::vector<ViewID>{ViewID::ReviewInVantro}));
    EXPECT_TRUE(viewModel->GetIsLoggedIn());
    EXPECT_TRUE(browser.Visits().empty()) << "a stored token needs no browser";
}

TEST_F(ViewModelServiceTest, AQuietSignInWhileSignedInLeavesTheBackEndAlone) {
    StartWorldWithViewModel();
    StoreToken();
    viewModel->SetIsLoggedIn(true);
    Open();
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
    // Had the open asked the back end, its token would have come and the sign-in taken the
    // service's user. The same path, taken by the test afterwards, is the fence.
    auto quiet = std::make_shared<vantrokeluitest::Recorded<bool>>();
    integration::SignInQuiet([quiet] { quiet->Add(true); });
    ASSERT_EQ(quiet->WaitFor(1).size(), 1u);
    EXPECT_EQ(integration::GetClient(), nullptr) << "no sign-in made a client";
    Pump();
    EXPECT_EQ(viewModel->GetUser()->GetID(), Guid());
}

TEST_F(ViewModelServiceTest, ASecondLoginWhileTheFirstIsPendingStartsASecondOne) {
    StartWorldWithViewModel();
    StoreToken();
    // Both logins are handed to the back end before either completes (completions come on the
    // token future's executor); each completion runs the opening decision once.
    viewModel->Login();
    viewModel->Login();
    EXPECT_EQ(workflowRuns.load(), 0);
    ASSERT_TRUE(PumpUntil([&] { return workflowRuns.load() == 2; }));
    Pump();
    EXPECT_EQ(workflowRuns.load(), 2);
    EXPECT_EQ(workflowRunsOffMainThread.load(), 0);
    EXPECT_TRUE(viewModel->GetIsLoggedIn());
}

TEST_F(ViewModelServiceTest, ALoginThatEndsWithFalseChangesNoScreen) {
    StartSignedInWorld();
    ASSERT_TRUE(viewModel->GetIsLoggedIn());
    ClearDelivered();
    // The back end's sign-out tells the held login callback false.
    integration::SignOut();
    Pump();
    EXPECT_FALSE(viewModel->GetIsLoggedIn());
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
    EXPECT_TRUE(delivered.empty());
}

TEST_F(ViewModelServiceTest, ALoginThatCompletesAfterTheViewModelHasGoneDoesNothing) {
    StartWorldWithViewModel();
    // The browser is held back until the view model has gone, so the completion comes late.
    TestBrowser browser({.username = kUser, .password = kPassword});
    auto pendingUrl = std::make_shared<vantrokeluitest::Recorded<std::string>>();
    vantroauth::SetBrowserOpener([pendingUrl](const std::string& url) {
        pendingUrl->Add(url);
        return true;
    });
    viewModel->Login();
    const auto urls = pendingUrl->WaitFor(1);
    ASSERT_EQ(urls.size(), 1u);
    const std::weak_ptr<ShareForReviewViewModel> weak = viewModel;
    viewBinding.reset();
    viewModel.reset();
    EXPECT_TRUE(weak.expired()) << "a pending login must not keep the view model alive";

    ASSERT_TRUE(browser.Opener()(urls[0]));
    ASSERT_TRUE(browser.WaitForVisits(1));
    // The sign-in completes: the client takes the token, and the completion finds no one.
    ASSERT_TRUE(PumpUntil([] { return integration::GetClient() != nullptr; }));
    Pump();
    EXPECT_EQ(workflowRuns.load(), 0);
}

TEST_F(ViewModelServiceTest, TheStoredFolderIsRestoredByIdOnceTheTreeHasIt) {
    StartWorldWithViewModel();
    host->ChooseFolder({Guid(folder), u"Studio/Editors/Alpha/Reviews", Guid(alpha)});
    StoreToken();
    Open();
    // At this open nobody is signed in yet: the tree is a plain user, and nothing is selected.
    EXPECT_EQ(viewModel->GetUser()->GetSelection(), nullptr);
    ASSERT_TRUE(PumpUntil([&] { return View() == ViewID::ReviewInVantro; }));
    const auto reviews = AwaitFolder(Guid(folder));
    ASSERT_NE(reviews, nullptr);
    EXPECT_EQ(viewModel->GetUser()->GetSelection(), nullptr);

    viewModel->SetCurrentViewID(ViewID::None);
    Open();
    EXPECT_EQ(viewModel->GetUser()->GetSelection(), reviews);
    EXPECT_EQ(viewModel->GetUser()->GetSelectionPath(), u"Studio/Editors/Alpha/Reviews");
    EXPECT_EQ(viewModel->GetUser()->GetProposedSelection(), nullptr);
}

/// The used storage of `account` as the service's database holds it. The service itself never
/// lets the usage pass the limit; a plan lowered under the usage is what this stands for.
void SetStorageUsed(const std::filesystem::path& dataDir, const std::string& account,
                    std::uint64_t used) {
    const std::string command = "sqlite3 '" + (dataDir / "vantro.db").string() +
                                "' \"UPDATE accounts SET storage_used = " + std::to_string(used) +
                                " WHERE id = '" + account + "'\"";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

TEST_F(ViewModelServiceTest, TheStorageCheckAtTheLimitIsFalseAndOneByteOverIsTrue) {
    StartWorldWithViewModel();
    const auto tight =
        AdminId({"account", "add", "--name", "Tight", "--owner", kUser, "--storage-limit", "100"});
    const auto team =
        AdminId({"team", "add", "--account", tight, "--name", "Crew", "--member", kUser});
    const auto ids = IdsIn(Admin({"project", "add", "--team", team, "--name", "Promo"}));
    ASSERT_EQ(ids.size(), 2u);
    Admin({"file", "add", "--parent", ids[1], "--name", "full.mov", "--size", "100"});
    StoreToken();
    Open();
    ASSERT_TRUE(PumpUntil([&] { return View() == ViewID::ReviewInVantro; }));
    const auto promoRoot = AwaitFolder(Guid(ids[1]));
    ASSERT_NE(promoRoot, nullptr);
    viewModel->GetUser()->SetSelection(promoRoot);

    auto atLimit = std::make_shared<vantrokeluitest::Recorded<bool>>();
    viewModel->CheckStorageLimitOnSelectedAccount([atLimit](bool over) { atLimit->Add(over); });
    EXPECT_EQ(atLimit->WaitFor(1), std::vector<bool>{false});

    SetStorageUsed(server.DataDir(), tight, 101);
    auto over = std::make_shared<vantrokeluitest::Recorded<bool>>();
    viewModel->CheckStorageLimitOnSelectedAccount([over](bool exceeded) { over->Add(exceeded); });
    EXPECT_EQ(over->WaitFor(1), std::vector<bool>{true});
}

TEST_F(ViewModelServiceTest, AnAccountOverItsLimitShowsTheLimitScreenFromShare) {
    StartSignedInWorld();
    SetStorageUsed(server.DataDir(), studio, (std::uint64_t{1} << 34) + 1);
    ClearDelivered();
    PressShare();
    ASSERT_TRUE(PumpUntil([&] { return View() == ViewID::StorageLimitExceeded; }));
    Pump();
    EXPECT_EQ(delivered, std::vector<ViewID>{ViewID::StorageLimitExceeded});
    EXPECT_EQ(host->Encoder().JobCount(), 0u);
    EXPECT_EQ(host->Stored(model::kSelectedEncoderPresetKey), std::nullopt)
        << "over the limit the preset is not written";
}

}  // namespace
}  // namespace vantrokelui::viewmodel::testing
