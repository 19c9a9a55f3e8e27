// The transitions that the share pipeline writes, run with the real pipeline, the real view
// model in place of the host's stand-in properties, the test encoder and the real server.

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vantrokelui/model/SequenceSettings.h>

#include "ViewModelWorldFixture.h"

namespace vantrokelui::viewmodel::testing {
namespace {

using kelcore::string::string;

class ViewModelPipelineTest : public ViewModelWorldFixture {
protected:
    void InjectFault(const boost::json::object& fault) {
        const auto reply = client.PostJson(Url("/test/faults"), fault);
        ASSERT_EQ(reply.status, 201) << reply.body;
    }
    /// Whether the pipeline still files a job under `jobID`.
    static bool JobFiled(const string& jobID) {
        return model::ShareManager::GetInstance().GetJobW(jobID) != nullptr;
    }
    /// The submission's writes have all landed. It runs on the storage check's thread and
    /// writes the view before the status, so the view alone is not enough.
    bool QueuedScreenShown() const {
        return View() == ViewID::EncodingQueued &&
               viewModel->GetEncodingStatus() == EncodingStatus::Queued;
    }
    /// Closes the panel as its host does, then opens it again.
    void Reopen() {
        viewModel->SetCurrentViewID(ViewID::None);
        Open();
    }
};

TEST_F(ViewModelPipelineTest, ShareGoesFromTheShareScreenToTheQueuedScreen) {
    StartSignedInWorld();
    ClearDelivered();
    const string jobID = ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());
    ASSERT_TRUE(PumpUntil([&] { return QueuedScreenShown(); }));
    Pump();
    EXPECT_EQ(delivered, std::vector<ViewID>{ViewID::EncodingQueued});
    EXPECT_FALSE(viewModel->GetReviewLinkURL().empty()) << "the new link is shown at once";
    EXPECT_TRUE(host->Stored(model::kSelectedEncoderPresetKey).has_value());
}

TEST_F(ViewModelPipelineTest, ANewLinksShareWritesTheFolderThroughTheViewModel) {
    StartSignedInWorld();
    const auto reviews = viewModel->GetUser()->GetSelection();
    ASSERT_NE(reviews, nullptr);
    viewModel->CreateNewLink();
    // The picker again: in new-link mode the commit leaves the sequence alone.
    host->Sequences().Put(sequence, model::kUploadFolderPathKey, u"stale");
    viewModel->SetCurrentViewID(ViewID::SelectFolder);
    viewModel->GetUser()->SetSelection(reviews);
    viewModel->LocationPickerSelectionCommitted();
    ASSERT_EQ(host->Stored(model::kUploadFolderPathKey), "stale");
    // The share starts by calling the writer the view model handed to the pipeline.
    const string jobID = ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());
    EXPECT_EQ(host->Stored(model::kUploadFolderPathKey), "Studio/Editors/Alpha/Reviews");
    EXPECT_EQ(host->Stored(model::kUploadFolderGuidKey), folder);
}

TEST_F(ViewModelPipelineTest, APanelOpenedWhileEncodingFollowsTheShareToItsLink) {
    StartSignedInWorld();
    const string jobID = ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());
    host->Encoder().BeginEncoding(jobID);
    Reopen();
    ASSERT_EQ(View(), ViewID::EncodingProgress);
    host->Encoder().ReportProgress(jobID, 0.5);
    host->Encoder().FinishEncoding(jobID);
    host->Encoder().StartUploading(jobID);
    ASSERT_TRUE(PumpUntil([&] { return View() == ViewID::CopyLinkSection; }));
    const auto stored = host->Stored(model::kReviewLinkURLKey);
    ASSERT_TRUE(stored.has_value());
    EXPECT_EQ(kelcore::string::UTF16toStdString(viewModel->GetReviewLinkURL()), *stored);
    EXPECT_FALSE(viewModel->GetActiveAssetDirty());
    EXPECT_EQ(host->Stored(model::kAssetModifiedAfterShareKey), "false");
}

TEST_F(ViewModelPipelineTest, APanelOpenedWhileUploadingFollowsTheShareToItsLink) {
    StartSignedInWorld();
    const string jobID = ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());
    host->Encoder().RunThroughEncoding(jobID);  // ends with the encoder's Encoded report
    Reopen();
    ASSERT_EQ(View(), ViewID::UploadProgress);
    host->Encoder().StartUploading(jobID);
    ASSERT_TRUE(PumpUntil([&] { return View() == ViewID::CopyLinkSection; }));
    EXPECT_TRUE(PumpUntil([&] { return !JobFiled(jobID); }));
}

TEST_F(ViewModelPipelineTest, AnUploadCancelledByThePipelineLeadsBackToTheShareScreen) {
    StartSignedInWorld();
    // Parts hang at the service, so the transfer still runs when it is cancelled.
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"count", 1000}, {"delay_ms", 60000}});
    const string jobID = ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());
    ASSERT_TRUE(PumpUntil([&] { return QueuedScreenShown(); }));
    host->Encoder().RunThroughEncoding(jobID);
    host->Encoder().StartUploading(jobID);
    ASSERT_TRUE(PumpUntil([&] {
        const auto job = model::ShareManager::GetInstance().GetJobW(jobID);
        return job && !job->GetUploadingJobID().empty();
    }));
    ClearDelivered();
    model::CancelActiveProcessingJob();
    ASSERT_TRUE(PumpUntil([&] { return View() == ViewID::ReviewInVantro; }));
    Pump();
    EXPECT_EQ(delivered, std::vector<ViewID>{ViewID::ReviewInVantro});
    EXPECT_EQ(viewModel->GetEncodingStatus(), EncodingStatus::UploadCancelled);
}

TEST_F(ViewModelPipelineTest, AFailedUploadClosesThePanelAndItsLateShareScreenIsDropped) {
    StartSignedInWorld();
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"count", 10000}, {"drop", true}});
    const string jobID = ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());
    ASSERT_TRUE(PumpUntil([&] { return QueuedScreenShown(); }));
    ClearDelivered();
    host->Encoder().RunThroughEncoding(jobID);
    host->Encoder().StartUploading(jobID);
    // The failure closes the panel, then the completion asks for the share screen: the closed
    // panel drops that.
    ASSERT_TRUE(
        PumpUntil([&] { return viewModel->GetEncodingStatus() == EncodingStatus::UploadFailed; }));
    Pump();
    EXPECT_EQ(View(), ViewID::None);
    EXPECT_EQ(delivered, std::vector<ViewID>{ViewID::None});
    EXPECT_EQ(host->Toasts().Toasts().size(), 1u);
}

TEST_F(ViewModelPipelineTest, ARefusedReviewLinkClosesThePanel) {
    StartSignedInWorld();
    InjectFault({{"route", "/v2/projects/*/review_links"}, {"count", 1}, {"status", 500}});
    ClearDelivered();
    PressShare();
    ASSERT_TRUE(PumpUntil([&] { return host->Toasts().Toasts().size() == 1u; }));
    Pump();
    EXPECT_EQ(View(), ViewID::None);
    EXPECT_EQ(delivered, std::vector<ViewID>{ViewID::None});
    EXPECT_EQ(host->Encoder().JobCount(), 0u);
}

// The sign-out drops the SDK client, so what a job still has to ask the service after it (adding
// its asset to a new link) cannot be asked; the transfer under way is the SDK's own and runs on
// with the token it holds, which the service honours until it expires.
TEST_F(ViewModelPipelineTest, LogoutClosesThePanelAndTheRunningUploadGoesOn) {
    StartSignedInWorld();
    // Parts are held a moment at the service, so the transfer still runs at the logout.
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"count", 1000}, {"delay_ms", 1500}});
    const string jobID = ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());
    host->Encoder().RunThroughEncoding(jobID);
    host->Encoder().StartUploading(jobID);
    ASSERT_TRUE(PumpUntil([&] {
        const auto job = model::ShareManager::GetInstance().GetJobW(jobID);
        return job && !job->GetUploadingJobID().empty();
    }));
    viewModel->Logout();
    Pump();
    EXPECT_EQ(View(), ViewID::None);
    EXPECT_FALSE(viewModel->GetIsLoggedIn());
    EXPECT_EQ(viewModel->GetUser()->GetID(), Guid());
    ASSERT_TRUE(JobFiled(jobID)) << "the upload ended before the logout";
    ASSERT_NE(viewModel->GetEncodingStatus(), EncodingStatus::UploadDone);
    ClearDelivered();

    ASSERT_TRUE(
        PumpUntil([&] { return viewModel->GetEncodingStatus() == EncodingStatus::UploadDone; }));
    Pump();
    EXPECT_TRUE(host->Toasts().Toasts().empty());
    EXPECT_TRUE(host->Stored(model::kUploadedAssetGuidKey).has_value());
    // The closed panel stayed closed.
    EXPECT_EQ(View(), ViewID::None);
    EXPECT_TRUE(delivered.empty());
}

}  // namespace
}  // namespace vantrokelui::viewmodel::testing
