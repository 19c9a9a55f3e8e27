// The pipeline's paths that reach the cloud, against the real service: a first share from its new
// link to the copy-link screen and the update after it, a refused link, a version stack without
// a link, a failed upload, a failed add to the link, and a cancel during the upload. The host
// (sequence values, encoder) and the panel are the model tests' stand-ins; the test plays the
// encoder by writing the file and reporting.
#include <vantrokelui/model/ShareManager.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <boost/json.hpp>

#include <kelappsupport/analytics/UsageEventsCapturedForTesting.h>
#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>
#include <kelcore/utility/Guid.h>

#include "ShareTestFixture.h"
#include "vantrokelui/support/CloudShareFixture.h"
#include "vantrokelui/support/FakeSequenceHost.h"
#include "vantrokelui/support/RecordingToastManager.h"

namespace vantrokelui::model {
namespace {

using kelcore::string::string;
using kelcore::utility::Guid;
using testing::FakeSequenceHost;
using testing::RecordingEncoder;
using testing::RecordingPanel;
using testing::U16;
using vantrokelui::testing::RecordingToastManager;

const ProcessingGuids kSequence{Guid(1, 1), Guid(2, 1)};

std::string U8(const string& text) {
    return kelcore::string::UTF16toStdString(text);
}

class ShareCloudTest : public vantrokeluitest::CloudShareFixture {
protected:
    void SetUp() override {
        CloudShareFixture::SetUp();
        kelcore::threads::SetMainThread();
        kelcore::threads::SetMainThreadDispatcher(queue);
        manager.SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                    host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        manager.SetAssetProcessingMethod(encoder->RenderFn(encoder), encoder->CancelFn(encoder));
        RecordingPanel::Install(manager, panel);
        manager.SetEncoderPresets({{u"H.264 Match Source", u"/presets/h264.epr", u"mp4"}});
        host->SetActive(kSequence);
        panel->SetActiveAssetName(u"Cut 1");
        queue->RunUntilEmpty();
        panel->ClearWrites();
    }
    void TearDown() override {
        queue->RunUntilEmpty();
        kelcore::threads::SetMainThreadDispatcher(nullptr);
        CloudShareFixture::TearDown();
    }

    // The service up, the host's user signed in, and the project's root folder chosen for the
    // sequence.
    void SignedInWorld() {
        StartWorld();
        StoreToken();
        ASSERT_TRUE(SignInAndWait());
        host->Put(kSequence, kUploadFolderGuidKey, U16(root));
        host->Put(kSequence, kUploadFolderParentProjGuidKey, U16(alpha));
        host->Put(kSequence, kUploadFolderPathKey, u"Studio/Editors/Alpha");
    }

    // Presses Share and waits for the job to reach the encoder; the job.
    std::shared_ptr<ShareJob> ShareUntilQueued() {
        const std::size_t before = encoder->Renders().size();
        manager.ProcessAssetForReview();
        EXPECT_TRUE(encoder->WaitForRenders(before + 1)) << "the encoder never got the job";
        const auto renders = encoder->Renders();
        if (renders.size() <= before) {
            return nullptr;
        }
        jobID = renders.back().jobID;
        return manager.GetJobW(jobID);
    }

    // The encoder renders the job, and the host hands the file to the upload.
    void RenderAndUpload(const std::shared_ptr<ShareJob>& job, std::size_t bytes = 64 * 1024) {
        const std::filesystem::path file(U8(job->GetOutputFilePath()));
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << std::string(bytes, 'v');
        manager.SetShareJobEncodingStatusForJob(EncodingStatus::Encoding, jobID);
        manager.SetShareJobEncodingStatusForJob(EncodingStatus::Encoded, jobID);
        manager.SetShareJobEncodingStatusForJob(EncodingStatus::Uploading, jobID);
        manager.StartUpload(jobID);
    }

    boost::json::value ApiGet(const std::string& path) {
        if (apiToken.empty()) {
            apiToken = SignIn(kUser, kPassword).access;
        }
        const auto reply = client.Get(Url(path), testsupport::Bearer(apiToken));
        EXPECT_EQ(reply.status, 200) << path << ": " << reply.body;
        return boost::json::parse(reply.body);
    }
    boost::json::array Links() {
        return ApiGet("/v2/projects/" + alpha + "/review_links").as_array();
    }
    void InjectFault(const boost::json::object& fault) {
        const auto reply = client.PostJson(Url("/test/faults"), fault);
        ASSERT_EQ(reply.status, 201) << reply.body;
    }
    std::optional<std::string> Stored(kelcore::string::string_view key) const {
        const auto value = host->Find(kSequence, key);
        return value ? std::optional<std::string>(U8(*value)) : std::nullopt;
    }

    std::shared_ptr<kelcore::threads::MainThreadQueue> queue =
        std::make_shared<kelcore::threads::MainThreadQueue>();
    std::shared_ptr<FakeSequenceHost> host = FakeSequenceHost::Create();
    std::shared_ptr<RecordingEncoder> encoder = std::make_shared<RecordingEncoder>();
    std::shared_ptr<RecordingPanel> panel = RecordingPanel::Create();
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    RecordingToastManager toasts;
    ShareManager manager;
    string jobID;
    std::string apiToken;
};

TEST_F(ShareCloudTest, AFirstShareMakesItsLinkUploadsAndEndsOnTheCopyLinkScreen) {
    SignedInWorld();

    const auto job = ShareUntilQueued();

    ASSERT_TRUE(job);
    ASSERT_TRUE(panel->WaitForWrite("UploadingSpeed=0"));
    const std::string url = U8(job->GetReviewLinkURL());
    EXPECT_EQ(url.rfind(Url("/r/"), 0), 0u) << url;
    // The link shows at once, before the job is queued.
    EXPECT_EQ(panel->Writes(),
              (std::vector<std::string>{"ReviewLinkURL=" + url, "CurrentViewID=11",
                                        "EncodingStatus=1", "EncodingProgress=0",
                                        "ProcessingRemainingTime=0", "UploadingSpeed=0"}));
    EXPECT_TRUE(job->GetAddToLink());
    EXPECT_TRUE(job->GetVersionStackGuid().IsNil());
    EXPECT_FALSE(Stored(kReviewLinkGuidKey));  // stored only once the upload has succeeded
    const auto links = Links();
    ASSERT_EQ(links.size(), 1u);
    EXPECT_EQ(links[0].at("name").as_string(), "Cut 1.mp4");
    EXPECT_EQ(links[0].at("id").as_string(), job->GetReviewLinkGuid().AsStdString());

    RenderAndUpload(job);
    ASSERT_TRUE(panel->WaitForWrite("CurrentViewID=10"));

    const Guid asset(*Stored(kUploadedAssetGuidKey));
    EXPECT_FALSE(asset.IsNil());
    EXPECT_EQ(Stored(kReviewLinkGuidKey), job->GetReviewLinkGuid().AsStdString());
    EXPECT_EQ(Stored(kReviewLinkURLKey), url);
    EXPECT_FALSE(job->GetVersionStackGuid().IsNil());
    EXPECT_EQ(Stored(kVersionStackGuidKey), job->GetVersionStackGuid().AsStdString());
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::UploadDone);
    EXPECT_FALSE(std::filesystem::exists(U8(job->GetOutputFilePath())));
    EXPECT_EQ(panel->WritesOf("ActiveAssetDirty"), std::vector<std::string>{"false"});
    const auto uploaded = ApiGet("/v2/assets/" + asset.AsStdString()).as_object();
    EXPECT_EQ(uploaded.at("parent_id").as_string(), job->GetVersionStackGuid().AsStdString());
    const auto items =
        ApiGet("/v2/review_links/" + job->GetReviewLinkGuid().AsStdString()).at("items").as_array();
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].at("asset_id").as_string(), asset.AsStdString());
    ASSERT_GE(events.Events().size(), 1u);
    EXPECT_EQ(events.Events().back().GetType(), "success");

    // The next share of the sequence updates the shared content: no new link, no add.
    const auto update = ShareUntilQueued();
    ASSERT_TRUE(update);
    EXPECT_FALSE(update->GetAddToLink());
    EXPECT_EQ(update->GetReviewLinkGuid(), job->GetReviewLinkGuid());
    EXPECT_EQ(update->GetVersionStackGuid(), job->GetVersionStackGuid());
    RenderAndUpload(update);
    ASSERT_TRUE(panel->WaitForWrite("CurrentViewID=10", 2));
    EXPECT_EQ(Links().size(), 1u);
    const auto versions =
        ApiGet("/v2/assets/" + job->GetVersionStackGuid().AsStdString() + "/children").as_array();
    EXPECT_EQ(versions.size(), 2u);
    EXPECT_EQ(ApiGet("/v2/review_links/" + job->GetReviewLinkGuid().AsStdString())
                  .at("items")
                  .as_array()
                  .size(),
              1u);
}

TEST_F(ShareCloudTest, CharactersIllegalInFileNamesBecomeHyphensInTheLinksName) {
    SignedInWorld();
    panel->SetActiveAssetName(u"A/B: take 2?");

    const auto job = ShareUntilQueued();

    ASSERT_TRUE(job);
    EXPECT_EQ(std::filesystem::path(U8(job->GetOutputFilePath())).filename(), "A-B- take 2-.mp4");
    const auto links = Links();
    ASSERT_EQ(links.size(), 1u);
    EXPECT_EQ(links[0].at("name").as_string(), "A-B- take 2-.mp4");
}

TEST_F(ShareCloudTest, ARefusedLinkShowsScreenZeroAndAToastThatOffersToTryAgain) {
    SignedInWorld();
    InjectFault({{"route", "/v2/projects/*/review_links"}, {"status", 500}});

    manager.ProcessAssetForReview();

    queue->PumpUntil([&] { return !toasts.Toasts().empty(); }, std::chrono::seconds(120));
    const auto shown = toasts.Toasts();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].message, "Unable to create share for review link.");
    EXPECT_EQ(shown[0].buttonLabel, "Try again");
    EXPECT_EQ(panel->Writes(), std::vector<std::string>{"CurrentViewID=0"});
    EXPECT_TRUE(encoder->Renders().empty());
    EXPECT_FALSE(manager.HasActiveShareJobs());
    EXPECT_TRUE(Links().empty());
}

TEST_F(ShareCloudTest, AStoredVersionStackWithoutALinkGetsANewLinkThatIsNotGivenTheAsset) {
    SignedInWorld();
    const Guid stack = Guid::CreateUnique();
    host->Put(kSequence, kVersionStackGuidKey, stack.AsString());

    const auto job = ShareUntilQueued();

    ASSERT_TRUE(job);
    EXPECT_FALSE(job->GetAddToLink());
    EXPECT_EQ(job->GetVersionStackGuid(), stack);
    ASSERT_EQ(Links().size(), 1u);
    RenderAndUpload(job);
    ASSERT_TRUE(panel->WaitForWrite("CurrentViewID=10"));
    EXPECT_EQ(Stored(kReviewLinkGuidKey), job->GetReviewLinkGuid().AsStdString());
    EXPECT_TRUE(ApiGet("/v2/review_links/" + job->GetReviewLinkGuid().AsStdString())
                    .at("items")
                    .as_array()
                    .empty());
    EXPECT_EQ(ApiGet("/v2/assets/" + stack.AsStdString() + "/children").as_array().size(), 1u);
}

TEST_F(ShareCloudTest, ANilStoredLinkCountsAsNoLinkAndANewOneIsMade) {
    SignedInWorld();
    const Guid stack = Guid::CreateUnique();
    host->Put(kSequence, kVersionStackGuidKey, stack.AsString());
    host->Put(kSequence, kReviewLinkGuidKey, Guid().AsString());
    host->Put(kSequence, kReviewLinkURLKey, u"http://127.0.0.1:1/r/old");

    const auto job = ShareUntilQueued();

    ASSERT_TRUE(job);
    const auto links = Links();
    ASSERT_EQ(links.size(), 1u);
    EXPECT_EQ(links[0].at("id").as_string(), job->GetReviewLinkGuid().AsStdString());
    EXPECT_NE(U8(job->GetReviewLinkURL()), "http://127.0.0.1:1/r/old");
    EXPECT_FALSE(job->GetAddToLink());
}

TEST_F(ShareCloudTest, AFailedUploadOnTheUpdatePathLeavesTheStoredValuesAsTheyWere) {
    SignedInWorld();
    const Guid stack = Guid::CreateUnique();
    const Guid link = Guid::CreateUnique();
    host->Put(kSequence, kVersionStackGuidKey, stack.AsString());
    host->Put(kSequence, kReviewLinkGuidKey, link.AsString());
    host->Put(kSequence, kReviewLinkURLKey, u"http://127.0.0.1:1/r/old");
    host->Put(kSequence, kUploadedAssetGuidKey, Guid(0xa5, 1).AsString());
    const std::size_t storedBefore = host->ValueCount();
    const auto job = ShareUntilQueued();
    ASSERT_TRUE(job);
    InjectFault({{"route", "/v2/assets/*/uploads"}, {"status", 500}});
    panel->ClearWrites();

    RenderAndUpload(job);

    ASSERT_TRUE(panel->WaitForWrite("CurrentViewID=4"));
    EXPECT_EQ(panel->Writes(),
              (std::vector<std::string>{"CurrentViewID=0", "EncodingStatus=8", "CurrentViewID=4"}));
    EXPECT_EQ(host->ValueCount(), storedBefore);
    EXPECT_EQ(Stored(kVersionStackGuidKey), stack.AsStdString());
    EXPECT_EQ(Stored(kReviewLinkGuidKey), link.AsStdString());
    EXPECT_EQ(Stored(kReviewLinkURLKey), "http://127.0.0.1:1/r/old");
    EXPECT_EQ(Stored(kUploadedAssetGuidKey), Guid(0xa5, 1).AsStdString());
    EXPECT_TRUE(host->ClearedKeys().empty());
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::UploadFailed);
    EXPECT_FALSE(manager.GetJobW(jobID));
    EXPECT_FALSE(std::filesystem::exists(U8(job->GetOutputFilePath())));
    queue->PumpUntil([&] { return !toasts.Toasts().empty(); }, std::chrono::seconds(120));
    ASSERT_EQ(toasts.Toasts().size(), 1u);
    EXPECT_EQ(toasts.Toasts()[0].message, "Uploading \"Cut 1.mp4\" to Vantro failed.");
    ASSERT_GE(events.Events().size(), 1u);
    EXPECT_EQ(events.Events().back().GetType(), "failure");
}

TEST_F(ShareCloudTest, AFailedAddToTheLinkForgetsTheLinkAndTheNextShareStartsAfresh) {
    SignedInWorld();
    const auto job = ShareUntilQueued();
    ASSERT_TRUE(job);
    InjectFault({{"route", "/v2/review_links/*/assets"}, {"status", 404}});

    RenderAndUpload(job);

    queue->PumpUntil([&] { return !toasts.Toasts().empty(); }, std::chrono::seconds(120));
    const auto shown = toasts.Toasts();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].message, "Sharing \"Cut 1.mp4\" failed. Please try again.");
    EXPECT_TRUE(shown[0].buttonLabel.empty());
    EXPECT_EQ(host->ClearedKeys(),
              (std::vector<string>{string(kReviewLinkGuidKey), string(kReviewLinkURLKey),
                                   string(kVersionStackGuidKey)}));
    EXPECT_TRUE(Stored(kUploadedAssetGuidKey));
    EXPECT_FALSE(Stored(kReviewLinkGuidKey));
    EXPECT_FALSE(Stored(kReviewLinkURLKey));
    EXPECT_FALSE(Stored(kVersionStackGuidKey));
    EXPECT_FALSE(manager.GetJobW(jobID));
    EXPECT_FALSE(std::filesystem::exists(U8(job->GetOutputFilePath())));
    EXPECT_EQ(panel->WritesOf("CurrentViewID").back(), "0");

    const auto next = ShareUntilQueued();
    ASSERT_TRUE(next);
    EXPECT_TRUE(next->GetAddToLink());
    EXPECT_TRUE(next->GetVersionStackGuid().IsNil());
    EXPECT_NE(next->GetReviewLinkGuid(), job->GetReviewLinkGuid());
    EXPECT_EQ(Links().size(), 2u);
}

TEST_F(ShareCloudTest, ACancelDuringTheUploadEndsItAsCancelled) {
    SignedInWorld();
    const auto job = ShareUntilQueued();
    ASSERT_TRUE(job);
    // Parts hang at the service until the client gives up on them.
    InjectFault({{"route", "/v2/uploads/*/parts/*"}, {"count", 100}, {"delay_ms", 60000}});
    RenderAndUpload(job, 12 * 1024 * 1024);
    ASSERT_FALSE(job->GetUploadingJobID().empty());
    panel->ClearWrites();

    manager.CancelActiveProcessingJob();

    EXPECT_FALSE(manager.GetJobW(jobID));
    EXPECT_TRUE(manager.GetActiveSequenceJobID().empty());
    EXPECT_FALSE(std::filesystem::exists(U8(job->GetOutputFilePath())));
    ASSERT_TRUE(panel->WaitForWrite("CurrentViewID=4"));
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::UploadCancelled);
    // The transfer's ending runs on the SDK's thread while the cancel finishes on this one, so
    // only the order within each thread is fixed.
    EXPECT_EQ(panel->WritesOf("ReviewLinkURL"), std::vector<std::string>{""});
    EXPECT_EQ(panel->WritesOf("EncodingStatus"), std::vector<std::string>{"9"});
    EXPECT_EQ(panel->WritesOf("CurrentViewID"), std::vector<std::string>{"4"});
    const auto writes = panel->Writes();
    EXPECT_LT(std::find(writes.begin(), writes.end(), "EncodingStatus=9"),
              std::find(writes.begin(), writes.end(), "CurrentViewID=4"));
    ASSERT_GE(events.Events().size(), 1u);
    EXPECT_EQ(events.Events().back().GetType(), "cancel");
    queue->RunUntilEmpty();
    EXPECT_TRUE(toasts.Toasts().empty());
    EXPECT_FALSE(Stored(kUploadedAssetGuidKey));
    EXPECT_TRUE(ApiGet("/v2/assets/" + root + "/children").as_array().empty());
}

}  // namespace
}  // namespace vantrokelui::model
