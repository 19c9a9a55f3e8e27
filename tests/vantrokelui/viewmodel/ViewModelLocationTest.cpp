// The location picker's closing in its two modes, the stand-alone dialog, and the storage check
// where it needs no service.

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <kelappsupport/analytics/UsageEventsCapturedForTesting.h>
#include <vantrokelui/model/SequenceSettings.h>

#include "ViewModelFixture.h"

namespace vantrokelui::viewmodel::testing {
namespace {

using kelcore::string::string;

class ViewModelLocationTest : public ViewModelFixture {
protected:
    struct Call {
        Guid folder;
        string path;
    };
    /// A dialog callback that records its calls.
    ShareForReviewViewModel::LocationCallback Recorder() {
        return [this](const Guid& folder, const string& path) { calls.push_back({folder, path}); };
    }
    /// Opens the picker as the dialog does, with `tree`'s user.
    void OpenDialog(const LocalTree& tree, ShareForReviewViewModel::LocationCallback callback) {
        viewModel->SelectLocationAPI(tree.user, std::move(callback));
        Pump();
    }

    std::vector<Call> calls;
};

TEST_F(ViewModelLocationTest, CommitFromThePanelWritesTheFolderLogsAndShowsTheShareScreen) {
    const LocalTree tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    viewModel->SetCurrentViewID(ViewID::SelectFolder);
    tree.user->SetSelection(tree.folder);
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    viewModel->LocationPickerSelectionCommitted();
    EXPECT_EQ(Stored(model::kUploadFolderGuidKey), tree.folder->GetID().AsString());
    EXPECT_EQ(Stored(model::kUploadFolderPathKey), string(u"Studio/Editors/Alpha/Reviews"));
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
    const auto sent = events.Events();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].GetCategory(), "EXPORT");
    EXPECT_EQ(sent[0].GetSubcategory(), "Publish");
    EXPECT_EQ(sent[0].GetType(), "set");
    EXPECT_EQ(sent[0].GetSubtype(), "vantro-location");
}

TEST_F(ViewModelLocationTest, CommitFromThePanelInNewLinkModeDoesNotWriteTheSequence) {
    const LocalTree tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    viewModel->SetCreateNewLinkMode(true);
    viewModel->SetCurrentViewID(ViewID::SelectProject);
    tree.user->SetSelection(tree.folder);
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    viewModel->LocationPickerSelectionCommitted();
    EXPECT_EQ(host->ValueCount(), 0u);
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
    EXPECT_EQ(events.Events().size(), 1u);
}

TEST_F(ViewModelLocationTest, CancelFromThePanelKeepsTheSelectionAndShowsTheShareScreen) {
    const LocalTree tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    tree.user->SetSelection(tree.folder);
    viewModel->SetCurrentViewID(ViewID::SelectFolder);
    viewModel->LocationPickerCancelled();
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
    EXPECT_EQ(tree.user->GetSelection(), tree.folder);
    EXPECT_EQ(host->ValueCount(), 0u);
}

TEST_F(ViewModelLocationTest, TheDialogTakesTheUserAndShowsTheProjectStep) {
    const LocalTree tree = LocalTree::Make();
    viewModel->SetCurrentViewID(ViewID::ReviewInVantro);
    OpenDialog(tree, Recorder());
    EXPECT_EQ(viewModel->GetUser(), tree.user);
    EXPECT_EQ(tree.user->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_EQ(View(), ViewID::SelectProject);
}

TEST_F(ViewModelLocationTest, CommitInTheDialogClosesAndReportsTheFolderAndPath) {
    const LocalTree tree = LocalTree::Make();
    OpenDialog(tree, Recorder());
    tree.user->SetSelection(tree.folder);
    viewModel->LocationPickerSelectionCommitted();
    EXPECT_EQ(View(), ViewID::None);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].folder, tree.folder->GetID());
    EXPECT_EQ(calls[0].path, u"Studio/Editors/Alpha/Reviews");
    // The dialog never writes the host's sequence.
    EXPECT_EQ(host->ValueCount(), 0u);
}

TEST_F(ViewModelLocationTest, CommitInTheDialogWithNothingSelectedReportsTheNullFolder) {
    const LocalTree tree = LocalTree::Make();
    OpenDialog(tree, Recorder());
    viewModel->LocationPickerSelectionCommitted();
    EXPECT_EQ(View(), ViewID::None);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].folder, Guid());
    EXPECT_EQ(calls[0].path, u"");
}

TEST_F(ViewModelLocationTest, CancelInTheDialogReportsTheNullFolderEvenWithASelection) {
    const LocalTree tree = LocalTree::Make();
    OpenDialog(tree, Recorder());
    tree.user->SetSelection(tree.folder);
    viewModel->LocationPickerCancelled();
    EXPECT_EQ(View(), ViewID::None);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].folder, Guid());
    EXPECT_EQ(calls[0].path, u"");
    EXPECT_EQ(tree.user->GetSelection(), tree.folder);
}

TEST_F(ViewModelLocationTest, TheDialogWithAnEmptyCallbackOnlyCloses) {
    const LocalTree tree = LocalTree::Make();
    OpenDialog(tree, {});
    tree.user->SetSelection(tree.folder);
    viewModel->LocationPickerSelectionCommitted();
    EXPECT_EQ(View(), ViewID::None);

    Open();
    viewModel->SetCurrentViewID(ViewID::SelectProject);
    viewModel->LocationPickerCancelled();  // still the dialog's mode: nothing sets it back
    EXPECT_EQ(View(), ViewID::None);
}

TEST_F(ViewModelLocationTest, StorageCheckWithoutASelectionAnswersNotExceededAtOnce) {
    std::optional<bool> answer;
    viewModel->CheckStorageLimitOnSelectedAccount([&](bool exceeded) { answer = exceeded; });
    ASSERT_TRUE(answer.has_value());
    EXPECT_FALSE(*answer);
}

TEST_F(ViewModelLocationTest, StorageCheckWithAnEmptyCallbackThrows) {
    EXPECT_THROW(viewModel->CheckStorageLimitOnSelectedAccount({}), std::bad_function_call);
}

TEST_F(ViewModelLocationTest, StorageCheckWithoutAClientNeverAnswers) {
    const LocalTree tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    tree.user->SetSelection(tree.folder);
    bool called = false;
    viewModel->CheckStorageLimitOnSelectedAccount([&](bool) { called = true; });
    // Without an SDK client the check returns without a word, synchronously.
    Pump();
    EXPECT_FALSE(called);
}

}  // namespace
}  // namespace vantrokelui::viewmodel::testing
