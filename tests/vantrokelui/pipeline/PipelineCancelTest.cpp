#include <gtest/gtest.h>

#include <boost/json.hpp>

#include <string>
#include <vector>

#include <kelcore/string/String.h>
#include <vantrokelui/model/ShareModel.h>

#include "SharePipelineFixture.h"
#include "support/AwaitFuture.h"

namespace vantrokeluitest {
namespace {

namespace model = vantrokelui::model;
using kelcore::string::string;
using vantrokelui::EncodingStatus;

class PipelineCancelTest : public SharePipelineFixture {};

TEST_F(PipelineCancelTest, ACancelWhileQueuedWaitsForTheHostToTakeTheJobOutOfTheEncoder) {
    StartSignedInWorld();
    const auto before = host->StoredValues();
    const auto jobID = host->ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());
    const auto job = Job(jobID);
    ASSERT_NE(job, nullptr);
    ASSERT_FALSE(host->Properties().GetReviewLinkURL().empty());

    model::CancelActiveProcessingJob();

    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::CancelRequested);
    EXPECT_EQ(Job(jobID), job) << "the job must wait in the map for the host";
    EXPECT_EQ(model::GetCancelJobQueue(), std::vector<string>{jobID});
    EXPECT_TRUE(host->Properties().GetReviewLinkURL().empty());
    EXPECT_TRUE(host->Encoder().CancelledJobIDs().empty());
    EXPECT_TRUE(model::HasActiveShareJobs());

    // A second press finds the job waiting and queues nothing more.
    model::CancelActiveProcessingJob();
    EXPECT_EQ(model::GetCancelJobQueue(), std::vector<string>{jobID});

    EXPECT_EQ(host->Encoder().WorkCancelQueue(), std::vector<string>{jobID});

    EXPECT_EQ(host->Encoder().CancelledJobIDs(), std::vector<string>{jobID});
    EXPECT_EQ(Job(jobID), nullptr);
    EXPECT_TRUE(model::GetCancelJobQueue().empty());
    EXPECT_FALSE(model::HasActiveShareJobs());
    EXPECT_TRUE(model::GetActiveSequenceJobID().empty());
    host->Pump();
    EXPECT_TRUE(host->Toasts().Toasts().empty());
    ExpectNothingLost(before);
}

TEST_F(PipelineCancelTest, ACancelWhileEncodingStopsTheRenderAndDropsItsFile) {
    StartSignedInWorld();
    const auto before = host->StoredValues();
    const auto jobID = host->ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());
    host->Encoder().BeginEncoding(jobID);
    host->Encoder().ReportProgress(jobID, 0.3);
    ASSERT_EQ(CacheFiles().size(), 1u) << "the encoder wrote no partial file";

    model::CancelActiveProcessingJob();

    EXPECT_EQ(host->Encoder().CancelledJobIDs(), std::vector<string>{jobID});
    EXPECT_EQ(Job(jobID), nullptr);
    EXPECT_TRUE(model::GetCancelJobQueue().empty());
    EXPECT_TRUE(model::GetActiveSequenceJobID().empty());
    EXPECT_TRUE(host->Properties().GetReviewLinkURL().empty());
    EXPECT_FALSE(model::HasActiveShareJobs());
    host->Pump();
    EXPECT_TRUE(host->Toasts().Toasts().empty());
    ExpectNothingLost(before);
}

TEST_F(PipelineCancelTest, ACancelWhileUploadingStopsTheTransferAndLeavesNothingOnTheServer) {
    StartSignedInWorld();
    const auto before = host->StoredValues();
    // Parts hang at the service, so the transfer is still running when the user cancels.
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"count", 1000}, {"delay_ms", 60000}});
    const auto jobID = host->ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());
    const auto job = Job(jobID);
    ASSERT_NE(job, nullptr);
    host->Encoder().RunThroughEncoding(jobID);
    host->Encoder().StartUploading(jobID);
    ASSERT_FALSE(job->GetUploadingJobID().empty());
    // The server has made the upload (a file waits for its parts in its data directory).
    ASSERT_TRUE(testsupport::WaitUntil([&] { return !PendingUploadsOnServer().empty(); }))
        << "the upload never reached the server";

    model::CancelActiveProcessingJob();
    ASSERT_TRUE(host->PumpUntil([&] { return host->CurrentView() == ViewID::ReviewInVantro; }));
    host->Pump();

    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::UploadCancelled);
    EXPECT_EQ(host->Properties().GetEncodingStatus(), EncodingStatus::UploadCancelled);
    EXPECT_EQ(host->Views(), (std::vector<ViewID>{ViewID::ReviewInVantro, ViewID::EncodingQueued,
                                                  ViewID::ReviewInVantro}));
    EXPECT_TRUE(host->Toasts().Toasts().empty()) << "a cancel is not a failure";
    EXPECT_EQ(Job(jobID), nullptr);
    EXPECT_FALSE(model::HasActiveShareJobs());
    EXPECT_TRUE(host->Properties().GetReviewLinkURL().empty());
    ExpectNothingLost(before);
    EXPECT_TRUE(AwaitNoPendingUploadOnServer()) << "the cancelled upload stayed on the server";
    EXPECT_EQ(FolderChildren().size(), 0u) << "something new arrived in the folder";
}

}  // namespace
}  // namespace vantrokeluitest
