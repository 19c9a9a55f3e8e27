#include <gtest/gtest.h>

#include <boost/json.hpp>

#include <string>
#include <vector>

#include <kelcore/string/String.h>
#include <kelui/sharedui/ToastType.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareModel.h>

#include "SharePipelineFixture.h"

namespace vantrokeluitest {
namespace {

namespace model = vantrokelui::model;
using kelcore::string::UTF16toStdString;
using kelui::sharedui::ToastType;
using vantrokelui::EncodingStatus;

class PipelineFailureTest : public SharePipelineFixture {
protected:
    // Waits for the one toast a failure shows and answers it; fails the test when none came.
    kelui::sharedui::ToastMessage AwaitOneToast() {
        EXPECT_TRUE(host->PumpUntil([&] { return !host->Toasts().Toasts().empty(); }))
            << "no toast was shown";
        host->Pump();
        const auto toasts = host->Toasts().Toasts();
        EXPECT_EQ(toasts.size(), 1u);
        return toasts.empty() ? kelui::sharedui::ToastMessage() : toasts.front();
    }
};

TEST_F(PipelineFailureTest, AFailedFirstUploadStoresNothingAndTellsTheUser) {
    StartSignedInWorld();
    const auto before = host->StoredValues();
    // Every part's connection drops, however often the SDK tries again.
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"count", 10000}, {"drop", true}});
    const auto jobID = host->ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());
    const auto job = Job(jobID);
    ASSERT_NE(job, nullptr);

    host->FinishShare(jobID);
    ASSERT_TRUE(host->PumpUntil([&] { return host->CurrentView() == ViewID::ReviewInVantro; }));
    host->Pump();

    const auto toast = AwaitOneToast();
    EXPECT_EQ(toast.message, "Uploading \"Cut 1.mp4\" to Vantro failed.");
    EXPECT_EQ(toast.buttonLabel, "");
    EXPECT_EQ(toast.type, ToastType::Error);
    EXPECT_EQ(host->Views(), (std::vector<ViewID>{ViewID::ReviewInVantro, ViewID::EncodingQueued,
                                                  ViewID::None, ViewID::ReviewInVantro}));
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::UploadFailed);
    EXPECT_EQ(host->Properties().GetEncodingStatus(), EncodingStatus::UploadFailed);
    EXPECT_EQ(Job(jobID), nullptr);
    EXPECT_FALSE(model::HasActiveShareJobs());
    ExpectNothingLost(before);
    EXPECT_TRUE(AwaitNoPendingUploadOnServer()) << "the failed upload was left on the server";
    EXPECT_EQ(FolderChildren().size(), 0u);
}

TEST_F(PipelineFailureTest, AFailedUpdateLeavesTheStoredValuesAsTheyWere) {
    StartSignedInWorld();
    ASSERT_EQ(host->RunToLink().view, ViewID::CopyLinkSection);
    const auto before = host->StoredValues();
    const std::string stack = before.at(KeyText(model::kVersionStackGuidKey));
    // The service refuses to take the upload at all.
    InjectFault({{"route", "/v2/assets/*/uploads"}, {"count", 100}, {"status", 500}});

    const auto run = host->RunToLink();
    ASSERT_TRUE(run.finished);
    ASSERT_TRUE(host->PumpUntil([&] { return host->CurrentView() == ViewID::ReviewInVantro; }));
    host->Pump();

    const auto toast = AwaitOneToast();
    EXPECT_EQ(toast.message, "Uploading \"Cut 1.mp4\" to Vantro failed.");
    EXPECT_EQ(host->Properties().GetEncodingStatus(), EncodingStatus::UploadFailed);
    EXPECT_EQ(Job(run.jobID), nullptr);
    ExpectNothingLost(before);
    EXPECT_EQ(ApiGet("/v2/assets/" + stack + "/children").as_array().size(), 1u);
}

TEST_F(PipelineFailureTest, AnAssetTheLinkRefusesDropsTheLinkButKeepsTheUploadedAsset) {
    StartSignedInWorld();
    const auto before = host->StoredValues();
    // Adding to a link is retried by the SDK; refuse more often than it tries.
    InjectFault({{"route", "/v2/review_links/*/assets"}, {"count", 100}, {"status", 500}});
    const std::size_t clearedBefore = host->Sequences().ClearedKeys().size();

    const auto run = host->RunToLink();

    ASSERT_TRUE(run.finished);
    const auto toast = AwaitOneToast();
    EXPECT_EQ(toast.message, "Sharing \"Cut 1.mp4\" failed. Please try again.");
    EXPECT_EQ(toast.buttonLabel, "") << "this failure offers no button";
    EXPECT_EQ(toast.type, ToastType::Error);
    EXPECT_EQ(host->CurrentView(), ViewID::None);
    EXPECT_EQ(host->Views(),
              (std::vector<ViewID>{ViewID::ReviewInVantro, ViewID::EncodingQueued, ViewID::None}));
    const auto cleared = host->Sequences().ClearedKeys();
    EXPECT_EQ(std::vector<kelcore::string::string>(
                  cleared.begin() + static_cast<std::ptrdiff_t>(clearedBefore), cleared.end()),
              (std::vector<kelcore::string::string>{
                  kelcore::string::string(model::kReviewLinkGuidKey),
                  kelcore::string::string(model::kReviewLinkURLKey),
                  kelcore::string::string(model::kVersionStackGuidKey)}));
    // Only the uploaded asset stays, and it is the file now on the server.
    auto expected = before;
    const auto asset = host->Stored(model::kUploadedAssetGuidKey);
    ASSERT_TRUE(asset.has_value()) << "the uploaded asset's id was removed";
    expected[KeyText(model::kUploadedAssetGuidKey)] = *asset;
    ExpectNothingLost(expected);
    EXPECT_EQ(Job(run.jobID), nullptr);
    EXPECT_FALSE(model::HasActiveShareJobs());
    const auto uploaded = ApiGet("/v2/assets/" + *asset).as_object();
    EXPECT_EQ(uploaded.at("type").as_string(), "file");
    const auto links = ApiGet("/v2/projects/" + alpha + "/review_links").as_array();
    ASSERT_EQ(links.size(), 1u);
    EXPECT_EQ(links[0].as_object().at("item_count").as_int64(), 0);
}

TEST_F(PipelineFailureTest, ARefusedReviewLinkOffersToTryAgainAndTheNewTrySucceeds) {
    StartSignedInWorld();
    const auto before = host->StoredValues();
    // Making a link is sent once; one refusal is enough.
    InjectFault({{"route", "/v2/projects/*/review_links"}, {"count", 1}, {"status", 500}});

    const auto jobID = host->ShareUntilQueued();

    EXPECT_TRUE(jobID.empty()) << "the encoder got a job without a link";
    const auto toast = AwaitOneToast();
    EXPECT_EQ(toast.message, "Unable to create share for review link.");
    EXPECT_EQ(toast.buttonLabel, "Try again");
    EXPECT_EQ(toast.type, ToastType::Error);
    EXPECT_EQ(host->Views(), (std::vector<ViewID>{ViewID::ReviewInVantro, ViewID::None}));
    EXPECT_EQ(host->Encoder().JobCount(), 0u);
    EXPECT_FALSE(model::HasActiveShareJobs());
    ExpectNothingLost(before);

    host->Toasts().PressButton(0);
    const auto retried = host->AwaitQueued(0, 1);
    ASSERT_FALSE(retried.empty()) << "Try again started no share";
    const auto run = host->FinishShare(retried);

    ASSERT_EQ(run.view, ViewID::CopyLinkSection);
    EXPECT_EQ(run.newToasts, 0u);
    const auto link = host->Stored(model::kReviewLinkGuidKey);
    ASSERT_TRUE(link.has_value());
    const auto items = ApiGet("/v2/review_links/" + *link).as_object().at("items").as_array();
    EXPECT_EQ(items.size(), 1u);
    EXPECT_EQ(CacheFiles(), std::vector<std::filesystem::path>());
}

TEST_F(PipelineFailureTest, AFailedRenderEndsTheShareAndClearsItsPartialFile) {
    StartSignedInWorld();
    const auto before = host->StoredValues();
    const auto jobID = host->ShareUntilQueued();
    ASSERT_FALSE(jobID.empty());
    host->Encoder().BeginEncoding(jobID);
    host->Encoder().ReportProgress(jobID, 0.4);
    ASSERT_EQ(CacheFiles().size(), 1u) << "the encoder wrote no partial file";

    host->Encoder().FailEncoding(jobID);

    const auto toast = AwaitOneToast();
    EXPECT_EQ(toast.message, "Encoding \"Cut 1.mp4\" failed. See Sarvex for details.");
    EXPECT_EQ(toast.buttonLabel, "");
    EXPECT_EQ(host->Views(),
              (std::vector<ViewID>{ViewID::ReviewInVantro, ViewID::EncodingQueued, ViewID::None}));
    EXPECT_EQ(Job(jobID), nullptr);
    EXPECT_TRUE(model::GetActiveSequenceJobID().empty());
    ExpectNothingLost(before);
}

}  // namespace
}  // namespace vantrokeluitest
