// The end of a share without the network: StartUpload's own steps, the three endings of the
// transfer as its finished callback runs them, the finish (file, modified mark, screen, job) and
// the usage events. ShareCloudTest runs the same endings against the real service.
#include <vantrokelui/model/ShareManager.h>

#include <atomic>
#include <mutex>

#include <gtest/gtest.h>

#include <kelappsupport/analytics/UsageEventsCapturedForTesting.h>

#include "ShareTestFixture.h"
#include "vantrokelui/support/RecordingToastManager.h"

namespace vantrokelui::model {
namespace {

using testing::ShareTestFixture;
using testing::U16;
using vantrokelui::testing::RecordingToastManager;

class ShareUploadTest : public ShareTestFixture {
protected:
    static inline const Guid kStack{0x5a, 1};
    static inline const Guid kLink{0x11, 1};
    static inline const Guid kAsset{0xa5, 1};
    static constexpr std::string_view kURL = "http://127.0.0.1:8080/r/abc";

    void SetUp() override {
        ShareTestFixture::SetUp();
        // The host's writes and reads, logged in call order.
        manager.SetAssetDataMethods(
            host->GetActiveSequenceFn(),
            [this, get = host->GetSequenceValueFn()](const Guid& project, const Guid& sequence,
                                                     const string& key, string& value) {
                ++reads;
                return get(project, sequence, key, value);
            },
            [this, set = host->SetSequenceValueFn()](const Guid& project, const Guid& sequence,
                                                     const string& key, const string& value) {
                const std::lock_guard lock(mutex);
                writtenKeys.push_back(key);
                return set(project, sequence, key, value);
            },
            host->ClearSequenceValueFn());
    }

    // A job of `guids` as an update of shared content (or a first share with `addToLink`), in
    // the upload stage, with its rendered file on disk.
    std::shared_ptr<ShareJob> UploadingJob(std::string_view id, const ProcessingGuids& guids,
                                           bool addToLink = false) {
        const ReviewAttributes review{kFolder, addToLink, addToLink ? Guid() : kStack, kLink,
                                      U16(kURL)};
        auto job = FileJob(id, guids, EncodingStatus::Uploading, review);
        WriteFile(job->GetOutputFilePath());
        return job;
    }

    std::vector<string> WrittenKeys() const {
        const std::lock_guard lock(mutex);
        return writtenKeys;
    }

    mutable std::mutex mutex;
    std::vector<string> writtenKeys;
    std::atomic<int> reads{0};
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
};

// --- StartUpload -------------------------------------------------------------------------------

TEST_F(ShareUploadTest, StartUploadForAnUnknownJobDoesNothing) {
    UploadingJob("job-a", kSequenceA);

    manager.StartUpload(u"job-x");

    EXPECT_EQ(reads.load(), 0);
    EXPECT_TRUE(WrittenKeys().empty());
    EXPECT_TRUE(panel->Writes().empty());
    EXPECT_EQ(manager.GetJobW(u"job-a")->GetVersionStackGuid(), kStack);
}

TEST_F(ShareUploadTest, AFirstShareNamesItsVersionStackWhenTheUploadStarts) {
    const auto job = UploadingJob("job-a", kSequenceA, true);
    ASSERT_TRUE(job->GetVersionStackGuid().IsNil());

    manager.StartUpload(u"job-a");

    const Guid named = job->GetVersionStackGuid();
    EXPECT_FALSE(named.IsNil());
    manager.StartUpload(u"job-a");
    EXPECT_EQ(job->GetVersionStackGuid(), named);
    // Without a cloud client nothing was sent: no transfer, and the status is the host's.
    EXPECT_TRUE(job->GetUploadingJobID().empty());
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::Uploading);
    EXPECT_TRUE(panel->Writes().empty());
}

TEST_F(ShareUploadTest, AnUpdateKeepsItsVersionStack) {
    const auto job = UploadingJob("job-a", kSequenceA);

    manager.StartUpload(u"job-a");

    EXPECT_EQ(job->GetVersionStackGuid(), kStack);
}

// --- the finished callback: success ------------------------------------------------------------

TEST_F(ShareUploadTest, SuccessStoresTheResultInOrderAndFinishesTheUpdate) {
    const auto job = UploadingJob("job-a", kSequenceA);
    Activate(kSequenceA);
    panel->ClearWrites();

    manager.HandleUploadFinished(job, u"job-a", kSequenceA, true, false, kAsset);

    EXPECT_EQ(WrittenKeys(),
              (std::vector<string>{string(kUploadedAssetGuidKey), string(kReviewLinkGuidKey),
                                   string(kReviewLinkURLKey), string(kVersionStackGuidKey)}));
    EXPECT_EQ(host->Find(kSequenceA, kUploadedAssetGuidKey), kAsset.AsString());
    EXPECT_EQ(host->Find(kSequenceA, kReviewLinkGuidKey), kLink.AsString());
    EXPECT_EQ(host->Find(kSequenceA, kReviewLinkURLKey), U16(kURL));
    EXPECT_EQ(host->Find(kSequenceA, kVersionStackGuidKey), kStack.AsString());
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::UploadDone);
    EXPECT_EQ(panel->Writes(),
              (std::vector<std::string>{"EncodingStatus=7", "UploadingSpeed=0",
                                        "ActiveAssetDirty=false", "CurrentViewID=10"}));
    EXPECT_FALSE(FileExists(job->GetOutputFilePath()));
    EXPECT_FALSE(manager.GetJobW(u"job-a"));
    // The active id stays, and finds nothing now.
    EXPECT_EQ(manager.GetActiveSequenceJobID(), u"job-a");
    EXPECT_FALSE(manager.GetActiveSequenceJob());
    const auto sent = events.Events();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].GetCategory(), "EXPORT");
    EXPECT_EQ(sent[0].GetSubcategory(), "Publish");
    EXPECT_EQ(sent[0].GetType(), "success");
    EXPECT_EQ(sent[0].GetSubtype(), "upload-media");
}

TEST_F(ShareUploadTest, AShareFinishedWhileAnotherSequenceIsActiveLeavesTheScreenAlone) {
    const auto job = UploadingJob("job-b", kSequenceB);
    Activate(kSequenceA);  // sequence A has no job
    panel->ClearWrites();

    manager.HandleUploadFinished(job, u"job-b", kSequenceB, true, false, kAsset);

    EXPECT_TRUE(panel->WritesOf("CurrentViewID").empty());
    EXPECT_TRUE(panel->WritesOf("ActiveAssetDirty").empty());
    EXPECT_EQ(host->Find(kSequenceB, kAssetModifiedAfterShareKey), u"false");
    EXPECT_FALSE(host->Find(kSequenceA, kAssetModifiedAfterShareKey));
    EXPECT_FALSE(manager.GetJobW(u"job-b"));
}

TEST_F(ShareUploadTest, AJobWhoseStatusIsNotDoneAtTheFinishStaysFiled) {
    const auto job = UploadingJob("job-a", kSequenceA);
    Activate(kSequenceA);
    panel->ClearWrites();
    job->SetEncodingStatus(EncodingStatus::Uploading);  // the host moved it meanwhile

    manager.FinalizeUpload(u"job-a");

    EXPECT_EQ(manager.GetJobW(u"job-a"), job);
    EXPECT_FALSE(FileExists(job->GetOutputFilePath()));
    EXPECT_EQ(panel->Writes(),
              (std::vector<std::string>{"ActiveAssetDirty=false", "CurrentViewID=10"}));
}

TEST_F(ShareUploadTest, FinalizeUploadForAnUnknownJobDoesNothing) {
    const auto job = UploadingJob("job-a", kSequenceA);

    manager.FinalizeUpload(u"job-x");

    EXPECT_TRUE(panel->Writes().empty());
    EXPECT_TRUE(FileExists(job->GetOutputFilePath()));
    EXPECT_EQ(manager.GetJobCount(), 1u);
    EXPECT_EQ(reads.load(), 0);
}

TEST_F(ShareUploadTest, AFirstShareIsFinishedOnlyOnceTheLinkHoldsTheAsset) {
    const auto job = UploadingJob("job-a", kSequenceA, true);
    Activate(kSequenceA);
    panel->ClearWrites();
    job->SetEncodingStatus(EncodingStatus::UploadDone);

    // Without a cloud client the add is never sent, so the share is never finished.
    manager.FinalizeUpload(u"job-a");

    EXPECT_EQ(reads.load(), 2);  // the asset and the link, read for the add
    EXPECT_TRUE(FileExists(job->GetOutputFilePath()));
    EXPECT_TRUE(panel->Writes().empty());
    EXPECT_EQ(manager.GetJobW(u"job-a"), job);
}

TEST_F(ShareUploadTest, TheActiveSequenceIsMarkedNotModifiedThroughThePanel) {
    const auto job = UploadingJob("job-a", kSequenceA);
    host->Put(kSequenceA, kAssetModifiedAfterShareKey, u"true");

    manager.UpdateDirtyFlag(job);

    // The view model writes the value; the library does not write it itself here.
    EXPECT_EQ(panel->Writes(), std::vector<std::string>{"ActiveAssetDirty=false"});
    EXPECT_EQ(host->Find(kSequenceA, kAssetModifiedAfterShareKey), u"true");
}

TEST_F(ShareUploadTest, AnotherSequenceIsMarkedNotModifiedInTheSequence) {
    const auto job = UploadingJob("job-b", kSequenceB);
    host->Put(kSequenceB, kAssetModifiedAfterShareKey, u"true");

    manager.UpdateDirtyFlag(job);

    EXPECT_TRUE(panel->Writes().empty());
    EXPECT_EQ(host->Find(kSequenceB, kAssetModifiedAfterShareKey), u"false");
}

TEST_F(ShareUploadTest, TheUploadedAssetIsStoredWithTheGivenSequence) {
    manager.SetUploadedAssetID(kSequenceB.projectGuid, kSequenceB.sequenceGuid, kAsset);

    EXPECT_EQ(host->Find(kSequenceB, kUploadedAssetGuidKey), kAsset.AsString());
    EXPECT_FALSE(host->Find(kSequenceA, kUploadedAssetGuidKey));
}

// --- the finished callback: failure and cancel -------------------------------------------------

TEST_F(ShareUploadTest, AFailedUploadFailsTheShareAndLeavesTheStoredValues) {
    RecordingToastManager toasts;
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    const std::size_t storedBefore = host->ValueCount();
    const auto job = UploadingJob("job-a", kSequenceA);
    Activate(kSequenceA);
    panel->ClearWrites();

    manager.HandleUploadFinished(job, u"job-a", kSequenceA, false, false, Guid());
    Pump();

    EXPECT_TRUE(WrittenKeys().empty());
    EXPECT_TRUE(host->ClearedKeys().empty());
    EXPECT_EQ(host->ValueCount(), storedBefore);
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::UploadFailed);
    EXPECT_EQ(panel->Writes(),
              (std::vector<std::string>{"CurrentViewID=0", "EncodingStatus=8", "CurrentViewID=4"}));
    EXPECT_FALSE(manager.GetJobW(u"job-a"));
    EXPECT_TRUE(manager.GetActiveSequenceJobID().empty());
    EXPECT_FALSE(FileExists(job->GetOutputFilePath()));
    const auto shown = toasts.Toasts();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].message, "Uploading \"Cut 1.mp4\" to Vantro failed.");
    EXPECT_TRUE(shown[0].buttonLabel.empty());
    const auto sent = events.Events();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].GetType(), "failure");
    EXPECT_EQ(sent[0].GetSubtype(), "upload-media");
}

TEST_F(ShareUploadTest, ACancelledUploadOnlySetsStatusAndScreen) {
    RecordingToastManager toasts;
    const auto job = UploadingJob("job-a", kSequenceA);
    Activate(kSequenceA);
    manager.CleanupCanceledJobInSarvex(u"job-a", job->GetOutputFilePath());  // the cancel
    panel->ClearWrites();

    manager.HandleUploadFinished(job, u"job-a", kSequenceA, false, true, Guid());
    Pump();

    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::UploadCancelled);
    EXPECT_EQ(panel->Writes(), (std::vector<std::string>{"EncodingStatus=9", "CurrentViewID=4"}));
    EXPECT_TRUE(toasts.Toasts().empty());
    EXPECT_TRUE(WrittenKeys().empty());
    EXPECT_FALSE(manager.GetJobW(u"job-a"));
    const auto sent = events.Events();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].GetType(), "cancel");
    EXPECT_EQ(sent[0].GetSubtype(), "upload-media");
}

TEST_F(ShareUploadTest, AnEndingAfterThePanelHasGoneStillEndsTheShare) {
    const auto job = UploadingJob("job-a", kSequenceA);
    panel.reset();

    manager.HandleUploadFinished(job, u"job-a", kSequenceA, true, false, kAsset);

    EXPECT_EQ(host->Find(kSequenceA, kUploadedAssetGuidKey), kAsset.AsString());
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::UploadDone);
    EXPECT_FALSE(manager.GetJobW(u"job-a"));
}

}  // namespace
}  // namespace vantrokelui::model
