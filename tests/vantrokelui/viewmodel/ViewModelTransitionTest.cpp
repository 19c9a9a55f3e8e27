// The panel's transitions written by the screens and by the pipeline's own functions, each from
// its source state. Rows whose writer is a screen do exactly what that screen's action does on
// the view model. Rows that need the real pipeline with the service: ViewModelPipelineTest.

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <vantrokelui/model/SequenceSettings.h>

#include "ViewModelFixture.h"
#include "vantrokelui/support/RecordingToastManager.h"

namespace vantrokelui::viewmodel::testing {
namespace {

using kelcore::string::string;

class ViewModelTransitionTest : public ViewModelFixture {
protected:
    /// Brings the open panel to `source` the way the panel gets there.
    void Reach(ViewID source) {
        viewModel->SetIsLoggedIn(true);
        Open();
        viewModel->SetCurrentViewID(source);
        ASSERT_EQ(View(), source);
    }
};

// The location click of the share panel, with its usage event, is the real screen's: see
// tests/vantrokelui_ui/panel (ReviewInVantroViewTest).

TEST_F(ViewModelTransitionTest, AProjectRowLeadsFromTheProjectStepToTheFolderStep) {
    Reach(ViewID::SelectProject);
    viewModel->SetCurrentViewID(ViewID::SelectFolder);
    Pump();
    EXPECT_EQ(View(), ViewID::SelectFolder);
    EXPECT_EQ(delivered.back(), ViewID::SelectFolder);
}

TEST_F(ViewModelTransitionTest, TheFolderHeaderLeadsBackToTheProjectStep) {
    Reach(ViewID::SelectFolder);
    viewModel->SetCurrentViewID(ViewID::SelectProject);
    EXPECT_EQ(View(), ViewID::SelectProject);
}

class ViewModelPickerCloseTest : public ViewModelTransitionTest,
                                 public ::testing::WithParamInterface<ViewID> {};

TEST_P(ViewModelPickerCloseTest, CommitInThePanelShowsTheShareScreen) {
    const LocalTree tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    Reach(GetParam());
    tree.user->SetSelection(tree.folder);
    viewModel->LocationPickerSelectionCommitted();
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
    EXPECT_EQ(Stored(model::kUploadFolderGuidKey), tree.folder->GetID().AsString());
}

TEST_P(ViewModelPickerCloseTest, CancelInThePanelShowsTheShareScreen) {
    Reach(GetParam());
    viewModel->LocationPickerCancelled();
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
}

TEST_P(ViewModelPickerCloseTest, CommitInTheDialogCloses) {
    const LocalTree tree = LocalTree::Make();
    std::vector<Guid> folders;
    viewModel->SelectLocationAPI(
        tree.user, [&](const Guid& folder, const string&) { folders.push_back(folder); });
    viewModel->SetCurrentViewID(GetParam());
    ASSERT_EQ(View(), GetParam());
    tree.user->SetSelection(tree.folder);
    viewModel->LocationPickerSelectionCommitted();
    EXPECT_EQ(View(), ViewID::None);
    EXPECT_EQ(folders, std::vector<Guid>{tree.folder->GetID()});
}

TEST_P(ViewModelPickerCloseTest, CancelInTheDialogCloses) {
    const LocalTree tree = LocalTree::Make();
    std::vector<Guid> folders;
    viewModel->SelectLocationAPI(
        tree.user, [&](const Guid& folder, const string&) { folders.push_back(folder); });
    viewModel->SetCurrentViewID(GetParam());
    viewModel->LocationPickerCancelled();
    EXPECT_EQ(View(), ViewID::None);
    EXPECT_EQ(folders, std::vector<Guid>{Guid()});
}

INSTANTIATE_TEST_SUITE_P(ProjectAndFolderSteps, ViewModelPickerCloseTest,
                         ::testing::Values(ViewID::SelectProject, ViewID::SelectFolder));

class ViewModelAnySourceTest : public ViewModelTransitionTest,
                               public ::testing::WithParamInterface<ViewID> {};

TEST_P(ViewModelAnySourceTest, SelectLocationApiShowsTheProjectStep) {
    if (GetParam() != ViewID::None) {
        Reach(GetParam());
    }
    viewModel->SelectLocationAPI(LocalTree::Make().user, {});
    EXPECT_EQ(View(), ViewID::SelectProject);
}

TEST_P(ViewModelAnySourceTest, LogoutCloses) {
    if (GetParam() != ViewID::None) {
        Reach(GetParam());
    }
    viewModel->Logout();
    Pump();
    EXPECT_EQ(View(), ViewID::None);
}

TEST_P(ViewModelAnySourceTest, TheHostClosingTheWorkflowCloses) {
    if (GetParam() != ViewID::None) {
        Reach(GetParam());
    }
    viewModel->SetCurrentViewID(ViewID::None);
    Pump();
    EXPECT_EQ(View(), ViewID::None);
    viewModel->SetCurrentViewID(GetParam() == ViewID::None ? ViewID::Offline : GetParam());
    EXPECT_EQ(View(), ViewID::None);
}

TEST_P(ViewModelAnySourceTest, AFailedShareCloses) {
    if (GetParam() != ViewID::None) {
        Reach(GetParam());
    }
    vantrokelui::testing::RecordingToastManager toasts;
    AddJob(EncodingStatus::Uploading);
    model::ShareManager::GetInstance().ShareFailed(lastJobID,
                                                   model::ShareManager::ShareFailedReason::Upload);
    Pump();
    EXPECT_EQ(View(), ViewID::None);
    EXPECT_EQ(toasts.Toasts().size(), 1u);
}

TEST_P(ViewModelAnySourceTest, AConnectivityReportShowsOfflineExceptOnAClosedPanel) {
    if (GetParam() != ViewID::None) {
        Reach(GetParam());
    }
    monitor->Report(true);
    EXPECT_EQ(View(), GetParam() == ViewID::None ? ViewID::None : ViewID::Offline);
}

INSTANTIATE_TEST_SUITE_P(Sources, ViewModelAnySourceTest,
                         ::testing::Values(ViewID::None, ViewID::DebugView, ViewID::SelectProject,
                                           ViewID::SelectFolder, ViewID::ReviewInVantro,
                                           ViewID::NoAssetProcessor, ViewID::NoAsset,
                                           ViewID::Offline, ViewID::StorageLimitExceeded,
                                           ViewID::SigninPrompt, ViewID::CopyLinkSection,
                                           ViewID::EncodingQueued, ViewID::EncodingProgress,
                                           ViewID::UploadProgress));

TEST_F(ViewModelTransitionTest, AStorageCheckThatSaysExceededShowsTheLimitScreenFromItsThread) {
    Reach(ViewID::ReviewInVantro);
    // What the Share action's callback does with true; it runs on the back end's executor.
    std::thread executor([this] { viewModel->SetCurrentViewID(ViewID::StorageLimitExceeded); });
    executor.join();
    Pump();
    EXPECT_EQ(View(), ViewID::StorageLimitExceeded);
    EXPECT_EQ(delivered.back(), ViewID::StorageLimitExceeded);
}

class ViewModelProgressCancelTest : public ViewModelTransitionTest,
                                    public ::testing::WithParamInterface<EncodingStatus> {};

TEST_P(ViewModelProgressCancelTest, CancelOnTheProgressScreenCancelsTheJobAndCloses) {
    std::vector<string> cancelled;
    model::SetAssetProcessingMethod([](const string&, const string&, const string&) {},
                                    [&](const string& jobID) { cancelled.push_back(jobID); });
    AddJob(GetParam());
    viewModel->SetIsLoggedIn(true);
    Open();
    const ViewID source = View();
    ASSERT_TRUE(source == ViewID::EncodingQueued || source == ViewID::EncodingProgress ||
                source == ViewID::UploadProgress);
    const string jobID = model::GetActiveSequenceJobID();
    // The progress view's Cancel: the active job first, then the panel closes.
    model::CancelActiveProcessingJob();
    viewModel->SetCurrentViewID(ViewID::None);
    Pump();
    EXPECT_EQ(View(), ViewID::None);
    if (GetParam() == EncodingStatus::Encoding) {
        EXPECT_EQ(cancelled, std::vector<string>{jobID});
    } else if (GetParam() == EncodingStatus::Queued) {
        EXPECT_EQ(model::GetCancelJobQueue(), std::vector<string>{jobID});
    }
}

INSTANTIATE_TEST_SUITE_P(Stages, ViewModelProgressCancelTest,
                         ::testing::Values(EncodingStatus::Queued, EncodingStatus::Encoding,
                                           EncodingStatus::Encoded));

TEST_F(ViewModelTransitionTest, CreatingANewLinkLeadsFromTheLinkToTheShareScreen) {
    Store(model::kReviewLinkURLKey, u"https://review.example/l/1");
    viewModel->SetIsLoggedIn(true);
    Open();
    ASSERT_EQ(View(), ViewID::CopyLinkSection);
    viewModel->CreateNewLink();
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
}

}  // namespace
}  // namespace vantrokelui::viewmodel::testing
