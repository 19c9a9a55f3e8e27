// Ending a share early: the user's Cancel in each stage, the cancel queue the host works
// through, the clean-up, ShareFailed, and the failure toast (its text, its cut, its button and
// where it is shown). A cancel that the transfer manager accepts needs a running upload and is
// in ShareCloudTest.
#include <vantrokelui/model/ShareManager.h>

#include <filesystem>

#include <gtest/gtest.h>

#include <kelcore/appstatemanager/AppStateManager.h>
#include <kelcore/config/Localizer.h>
#include <kelui/ui/MainTopLevelWindow.h>
#include <kelui/ui/UI_Window.h>
#include <support/TemporaryDirectory.h>
#include <vantrokelui/model/ShareModel.h>

#include "ShareTestFixture.h"
#include "vantrokelui/support/RecordingToastManager.h"

namespace vantrokelui::model {
namespace {

using Reason = ShareManager::ShareFailedReason;
using testing::ShareTestFixture;
using testing::U16;
using vantrokelui::testing::RecordingToastManager;

class ToastWindow final : public kelui::ui::UI_Window {
public:
    kelcore::string::string GetTitle() const override { return u"Main window"; }
};

class ShareCancelTest : public ShareTestFixture {
protected:
    void TearDown() override {
        ShareTestFixture::TearDown();
        kelcore::appstatemanager::ResetForTesting();  // the process's manager, when a test made it
    }

    // A job of the active sequence in `status`, with its file on disk.
    std::shared_ptr<ShareJob> ActiveJob(EncodingStatus status) {
        ReviewAttributes review;
        review.reviewLinkURL = u"http://127.0.0.1:8080/r/abc";
        auto job = FileJob("job-a", kSequenceA, status, review);
        WriteFile(job->GetOutputFilePath());
        Activate(kSequenceA);
        panel->ClearWrites();
        return job;
    }

    // The message of the one toast that ShowFailureToast(path, reason, tryAgain) shows.
    kelui::sharedui::ToastMessage OneToast(const string& path, Reason reason,
                                           bool tryAgain = false) {
        manager.ShowFailureToast(path, reason, tryAgain);
        Pump();
        const auto shown = toasts.Toasts();
        EXPECT_EQ(shown.size(), 1u);
        return shown.empty() ? kelui::sharedui::ToastMessage() : shown.back();
    }

    RecordingToastManager toasts;
};

// --- the user's Cancel -------------------------------------------------------------------------

TEST_F(ShareCancelTest, ACancelWhileQueuedWaitsForTheHostInTheCancelQueue) {
    const auto job = ActiveJob(EncodingStatus::Queued);

    manager.CancelActiveProcessingJob();

    EXPECT_EQ(manager.GetCancelJobQueue(), std::vector<string>{u"job-a"});
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::CancelRequested);
    EXPECT_TRUE(job->GetReviewLinkURL().empty());
    EXPECT_EQ(manager.GetJobW(u"job-a"), job);
    EXPECT_EQ(manager.GetActiveSequenceJobID(), u"job-a");
    EXPECT_TRUE(FileExists(job->GetOutputFilePath()));
    EXPECT_TRUE(encoder->Cancels().empty());
    EXPECT_EQ(panel->Writes(), std::vector<std::string>{"ReviewLinkURL="});
}

TEST_F(ShareCancelTest, ASecondCancelWhileQueuedOnlyEmptiesTheLinkText) {
    const auto job = ActiveJob(EncodingStatus::Queued);
    manager.CancelActiveProcessingJob();

    manager.CancelActiveProcessingJob();

    EXPECT_EQ(manager.GetCancelJobQueue(), std::vector<string>{u"job-a"});
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::CancelRequested);
    EXPECT_EQ(panel->Writes(), (std::vector<std::string>{"ReviewLinkURL=", "ReviewLinkURL="}));
}

TEST_F(ShareCancelTest, ACancelWithoutAJobForTheActiveSequenceHasNoEffectAtAll) {
    FileJob("job-b", kSequenceB, EncodingStatus::Encoding);
    Activate(kSequenceA);
    panel->ClearWrites();

    manager.CancelActiveProcessingJob();

    EXPECT_TRUE(panel->Writes().empty());
    EXPECT_TRUE(encoder->Cancels().empty());
    EXPECT_TRUE(manager.GetCancelJobQueue().empty());
    EXPECT_EQ(manager.GetJobCount(), 1u);
}

TEST_F(ShareCancelTest, ACancelWhileEncodingTakesTheJobFromTheEncoderAndDropsIt) {
    const auto job = ActiveJob(EncodingStatus::Encoding);

    manager.CancelActiveProcessingJob();

    EXPECT_EQ(encoder->Cancels(), std::vector<string>{u"job-a"});
    EXPECT_FALSE(manager.GetJobW(u"job-a"));
    EXPECT_TRUE(manager.GetActiveSequenceJobID().empty());
    EXPECT_FALSE(FileExists(job->GetOutputFilePath()));
    EXPECT_TRUE(manager.GetCancelJobQueue().empty());
    EXPECT_EQ(panel->Writes(), std::vector<std::string>{"ReviewLinkURL="});
}

TEST_F(ShareCancelTest, ACancelOnceEncodedChangesNothingButTheLinkText) {
    const auto job = ActiveJob(EncodingStatus::Encoded);

    manager.CancelActiveProcessingJob();

    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::Encoded);
    EXPECT_EQ(manager.GetJobW(u"job-a"), job);
    EXPECT_TRUE(FileExists(job->GetOutputFilePath()));
    EXPECT_TRUE(encoder->Cancels().empty());
    EXPECT_EQ(job->GetReviewLinkURL(), u"http://127.0.0.1:8080/r/abc");
    EXPECT_EQ(panel->Writes(), std::vector<std::string>{"ReviewLinkURL="});
}

TEST_F(ShareCancelTest, ACancelBeforeTheTransferHasAnIdDoesNothingToTheUpload) {
    const auto job = ActiveJob(EncodingStatus::Uploading);

    manager.CancelActiveProcessingJob();

    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::Uploading);
    EXPECT_EQ(manager.GetJobW(u"job-a"), job);
    EXPECT_EQ(panel->Writes(), std::vector<std::string>{"ReviewLinkURL="});
}

TEST_F(ShareCancelTest, ARefusedCancelOfTheUploadMarksItFailedAndKeepsTheJob) {
    const auto job = ActiveJob(EncodingStatus::Uploading);
    // No cloud client: the transfer manager cannot accept the cancel.
    job->SetUploadingJobID(u"5b0e2a8e-6f43-4e8e-9d55-2f1c3e1a0b7d");

    manager.CancelActiveProcessingJob();

    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::UploadFailed);
    EXPECT_EQ(manager.GetJobW(u"job-a"), job);
    EXPECT_EQ(manager.GetActiveSequenceJobID(), u"job-a");
    EXPECT_TRUE(FileExists(job->GetOutputFilePath()));
    EXPECT_EQ(panel->Writes(), std::vector<std::string>{"ReviewLinkURL="});
    Pump();
    EXPECT_TRUE(toasts.Toasts().empty());
}

// --- the cancel queue --------------------------------------------------------------------------

TEST_F(ShareCancelTest, TheQueueKeepsTheOrderOfArrivalAndRemovingShiftsLaterEntriesDown) {
    for (const auto& [id, guids] : {std::pair{"job-1", ProcessingGuids{Guid(1, 1), Guid(3, 1)}},
                                    std::pair{"job-2", ProcessingGuids{Guid(1, 1), Guid(3, 2)}},
                                    std::pair{"job-3", ProcessingGuids{Guid(1, 1), Guid(3, 3)}}}) {
        FileJob(id, guids, EncodingStatus::Queued);
        Activate(guids);
        manager.CancelActiveProcessingJob();
    }
    ASSERT_EQ(manager.GetCancelJobQueue(), (std::vector<string>{u"job-1", u"job-2", u"job-3"}));

    manager.RemoveJobInCancelJobQueueAt(0);
    EXPECT_EQ(manager.GetCancelJobQueue(), (std::vector<string>{u"job-2", u"job-3"}));
    manager.RemoveJobInCancelJobQueueAt(1);
    EXPECT_EQ(manager.GetCancelJobQueue(), std::vector<string>{u"job-2"});
}

TEST_F(ShareCancelTest, AnIndexPastTheEndOfTheQueueLeavesItAsItIs) {
    ActiveJob(EncodingStatus::Queued);
    manager.CancelActiveProcessingJob();

    manager.RemoveJobInCancelJobQueueAt(1);

    EXPECT_EQ(manager.GetCancelJobQueue(), std::vector<string>{u"job-a"});
}

TEST_F(ShareCancelTest, TheQueueIsHandedOutAsACopy) {
    ActiveJob(EncodingStatus::Queued);
    manager.CancelActiveProcessingJob();
    std::vector<string> copy = manager.GetCancelJobQueue();

    copy.clear();

    EXPECT_EQ(manager.GetCancelJobQueue().size(), 1u);
}

TEST_F(ShareCancelTest, TheHostFinishesAQueuedCancelThroughTheQueue) {
    const auto job = ActiveJob(EncodingStatus::Queued);
    manager.CancelActiveProcessingJob();

    // The host's walk: by its own copy, removing the entries it has dealt with.
    const std::vector<string> queued = manager.GetCancelJobQueue();
    for (const string& id : queued) {
        manager.RemoveCanceledJobInSarvex(id);
        manager.RemoveJobInCancelJobQueueAt(0);
    }

    EXPECT_EQ(encoder->Cancels(), std::vector<string>{u"job-a"});
    EXPECT_FALSE(manager.GetJobW(u"job-a"));
    EXPECT_FALSE(FileExists(job->GetOutputFilePath()));
    EXPECT_TRUE(manager.GetCancelJobQueue().empty());
    EXPECT_FALSE(manager.HasActiveShareJobs());
}

TEST_F(ShareCancelTest, CleaningUpAJobTheHostRemovedItselfDoesNotCallTheEncoder) {
    const auto job = ActiveJob(EncodingStatus::CancelRequested);

    manager.GetAndCleanupCanceledJobInSarvex(u"job-a");

    EXPECT_TRUE(encoder->Cancels().empty());
    EXPECT_FALSE(manager.GetJobW(u"job-a"));
    EXPECT_FALSE(FileExists(job->GetOutputFilePath()));
}

TEST_F(ShareCancelTest, CleaningUpAnUnknownJobChangesNothing) {
    ActiveJob(EncodingStatus::Queued);

    manager.GetAndCleanupCanceledJobInSarvex(u"job-x");

    EXPECT_EQ(manager.GetActiveSequenceJobID(), u"job-a");
    EXPECT_EQ(manager.GetJobCount(), 1u);
}

TEST_F(ShareCancelTest, RemovingACancelledJobAsksTheEncoderEvenForAnUnknownJob) {
    ActiveJob(EncodingStatus::Queued);

    manager.RemoveCanceledJobInSarvex(u"job-x");

    EXPECT_EQ(encoder->Cancels(), std::vector<string>{u"job-x"});
    EXPECT_EQ(manager.GetJobCount(), 1u);
}

TEST_F(ShareCancelTest, TheCleanUpForgetsTheActiveJobWhicheverJobItNamed) {
    const auto other = FileJob("job-b", kSequenceB, EncodingStatus::CancelRequested);
    ActiveJob(EncodingStatus::Encoding);

    manager.GetAndCleanupCanceledJobInSarvex(u"job-b");

    EXPECT_FALSE(manager.GetJobW(u"job-b"));
    EXPECT_TRUE(manager.GetJobW(u"job-a"));
    EXPECT_TRUE(manager.GetActiveSequenceJobID().empty());
}

TEST_F(ShareCancelTest, TheFreeFunctionsReachTheProcesssManager) {
    ShareManager& process = ShareManager::GetInstance();
    InjectInto(process);
    process.AddJobToMap(u"job-a", kSequenceA, EncodingAttributes{EncodingStatus::Queued, 0.0}, {},
                        OutputPath("Cut 1.mp4"));
    process.SetCurrentActiveSequenceAndProperties();

    CancelActiveProcessingJob();
    EXPECT_EQ(GetCancelJobQueue(), std::vector<string>{u"job-a"});
    RemoveCanceledJobInSarvex(u"job-a");
    RemoveJobInCancelJobQueueAt(0);

    EXPECT_TRUE(GetCancelJobQueue().empty());
    EXPECT_EQ(encoder->Cancels(), std::vector<string>{u"job-a"});
    EXPECT_FALSE(HasActiveShareJobs());
    process.AddJobToMap(u"job-b", kSequenceB, EncodingAttributes{EncodingStatus::Queued, 0.0}, {},
                        OutputPath("Cut 2.mp4"));
    GetAndCleanupCanceledJobInSarvex(u"job-b");
    EXPECT_FALSE(HasActiveShareJobs());
}

// --- temporary files ---------------------------------------------------------------------------

TEST_F(ShareCancelTest, DeletingAMissingFileIsFine) {
    const string path = OutputPath("never written.mp4");

    manager.DeleteTempFile(path);

    EXPECT_FALSE(FileExists(path));
}

TEST_F(ShareCancelTest, AFileThatCannotBeDeletedIsIgnored) {
    // A directory with something in it stands where the file should be.
    const string path = OutputPath("stuck.mp4");
    std::filesystem::create_directories(std::filesystem::path(U8(path)) / "inside");

    EXPECT_NO_THROW(manager.DeleteTempFile(path));

    EXPECT_TRUE(FileExists(path));
}

// --- ShareFailed -------------------------------------------------------------------------------

TEST_F(ShareCancelTest, AFailedShareIsClearedUpAndToldWithoutTryAgain) {
    const auto job = ActiveJob(EncodingStatus::Encoded);

    manager.ShareFailed(u"job-a", Reason::Sharing);
    EXPECT_TRUE(toasts.Toasts().empty());  // posted, not shown inside the call
    Pump();

    EXPECT_EQ(panel->Writes(), std::vector<std::string>{"CurrentViewID=0"});
    EXPECT_FALSE(FileExists(job->GetOutputFilePath()));
    EXPECT_FALSE(manager.GetJobW(u"job-a"));
    EXPECT_TRUE(manager.GetActiveSequenceJobID().empty());
    const auto shown = toasts.Toasts();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].message, "Sharing \"Cut 1.mp4\" failed. Please try again.");
    EXPECT_TRUE(shown[0].buttonLabel.empty());
}

TEST_F(ShareCancelTest, AFailedShareOfAnotherSequenceKeepsTheActiveJob) {
    ActiveJob(EncodingStatus::Encoding);
    FileJob("job-b", kSequenceB, EncodingStatus::Encoding);

    manager.ShareFailed(u"job-b", Reason::Encoding);

    EXPECT_EQ(manager.GetActiveSequenceJobID(), u"job-a");
    EXPECT_FALSE(manager.GetJobW(u"job-b"));
}

TEST_F(ShareCancelTest, AFailureOfAnUnknownJobShowsNothing) {
    ActiveJob(EncodingStatus::Encoding);

    manager.ShareFailed(u"job-x", Reason::Upload);
    Pump();

    EXPECT_TRUE(toasts.Toasts().empty());
    EXPECT_TRUE(panel->Writes().empty());
    EXPECT_EQ(manager.GetJobCount(), 1u);
}

// --- the failure toast -------------------------------------------------------------------------

TEST_F(ShareCancelTest, TheToastIsAnErrorOverTheMainWindowThatStaysUntilDismissed) {
    const auto window = std::make_shared<ToastWindow>();
    kelui::ui::SetMainTopLevelWindow(window);

    const auto toast = OneToast(u"/cache/Cut 1.mp4", Reason::Upload);
    kelui::ui::SetMainTopLevelWindow({});

    EXPECT_EQ(toast.window.lock(), window);
    EXPECT_EQ(toast.message, "Uploading \"Cut 1.mp4\" to Vantro failed.");
    EXPECT_EQ(toast.type, kelui::sharedui::ToastType::Error);
    EXPECT_EQ(toast.duration, 0.0);
    EXPECT_EQ(toast.priority, kelui::sharedui::kToastManager_DefaultPriority);
    EXPECT_EQ(toast.lineType, kelui::sharedui::ToastLineType::SingleLine);
    EXPECT_TRUE(toast.buttonLabel.empty());
    ASSERT_TRUE(toast.dismissal);
    toast.dismissal();  // does nothing
}

TEST_F(ShareCancelTest, WithoutAMainWindowTheToastHasNoParent) {
    const auto toast = OneToast(u"/cache/Cut 1.mp4", Reason::Upload);

    EXPECT_FALSE(toast.window.lock());
    EXPECT_EQ(toast.message, "Uploading \"Cut 1.mp4\" to Vantro failed.");
}

TEST_F(ShareCancelTest, EachReasonHasItsText) {
    manager.ShowFailureToast(u"/cache/Cut 1.mp4", Reason::Encoding, false);
    manager.ShowFailureToast(u"/cache/Cut 1.mp4", Reason::Upload, false);
    manager.ShowFailureToast(u"/cache/Cut 1.mp4", Reason::ReviewLink, false);
    manager.ShowFailureToast(u"/cache/Cut 1.mp4", Reason::Sharing, false);
    manager.ShowFailureToast(u"/cache/Cut 1.mp4", static_cast<Reason>(4), false);
    Pump();

    const auto shown = toasts.Toasts();
    ASSERT_EQ(shown.size(), 5u);
    EXPECT_EQ(shown[0].message, "Encoding \"Cut 1.mp4\" failed. See Sarvex for details.");
    EXPECT_EQ(shown[1].message, "Uploading \"Cut 1.mp4\" to Vantro failed.");
    EXPECT_EQ(shown[2].message, "Unable to create share for review link.");
    EXPECT_EQ(shown[3].message, "Sharing \"Cut 1.mp4\" failed. Please try again.");
    EXPECT_EQ(shown[4].message, "");  // a reason beyond the four
}

TEST_F(ShareCancelTest, ANameOfExactly26BytesIsShownWhole) {
    const auto toast = OneToast(u"/cache/abcdefghijklmnopqrstuv.mp4", Reason::Upload);

    EXPECT_EQ(toast.message, "Uploading \"abcdefghijklmnopqrstuv.mp4\" to Vantro failed.");
}

TEST_F(ShareCancelTest, ANameOf27BytesShowsItsFirst26AndAnEllipsis) {
    const auto toast = OneToast(u"/cache/abcdefghijklmnopqrstuvw.mp4", Reason::Upload);

    EXPECT_EQ(toast.message, "Uploading \"abcdefghijklmnopqrstuvw.mp...\" to Vantro failed.");
}

TEST_F(ShareCancelTest, TheCutCountsBytesAndDropsACharacterItSplits) {
    // "a" and thirteen two-byte letters: 27 bytes, and byte 26 is the first half of the last.
    const auto toast = OneToast(
        u"/cache/a\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9"
        u"\u00e9\u00e9\u00e9\u00e9\u00e9",
        Reason::Sharing);

    EXPECT_EQ(toast.message,
              "Sharing \"a\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9"
              "\u00e9\u00e9\u00e9...\" failed. Please try again.");
}

TEST_F(ShareCancelTest, AnEmptyPathGivesAnEmptyNameWhichTheLinkTextIgnores) {
    const auto link = OneToast(u"", Reason::ReviewLink, true);
    EXPECT_EQ(link.message, "Unable to create share for review link.");
    EXPECT_EQ(link.buttonLabel, "Try again");

    manager.ShowFailureToast(u"", Reason::Upload, false);
    Pump();
    EXPECT_EQ(toasts.Toasts().back().message, "Uploading \"\" to Vantro failed.");
}

TEST_F(ShareCancelTest, TheTextsComeThroughTheLocaliser) {
    testsupport::TemporaryDirectory resources;
    resources.Write("xx_XX.strings",
                    "$$$/Corvane/vantrokelui/model/ShareManager/Toast/UploadFailed=Hochladen von "
                    "\u00bb@0\u00ab fehlgeschlagen.\n"
                    "$$$/Corvane/vantrokelui/model/ShareManager/Toast/TryAgain=Nochmal\n");
    auto& localizer = kelcore::config::Localizer::Get();
    ASSERT_TRUE(localizer.LoadLocale(resources.Path(), "xx_XX"));

    const auto toast = OneToast(u"/cache/Cut 1.mp4", Reason::Upload, true);
    localizer.Reset();

    EXPECT_EQ(toast.message, "Hochladen von \u00bbCut 1.mp4\u00ab fehlgeschlagen.");
    EXPECT_EQ(toast.buttonLabel, "Nochmal");
}

TEST_F(ShareCancelTest, TryAgainStartsANewShareOfTheSequenceActiveThen) {
    ShareManager& process = ShareManager::GetInstance();
    InjectInto(process);
    process.SetEncoderPresets({{u"H.264", u"/presets/h264.epr", u"mp4"}});
    const auto toast = OneToast(u"", Reason::ReviewLink, true);
    // By the time the user presses the button, another sequence with a usable link is active.
    ChooseFolder(kSequenceB);
    host->Put(kSequenceB, kVersionStackGuidKey, Guid(0x5a, 1).AsString());
    host->Put(kSequenceB, kReviewLinkGuidKey, Guid(0x11, 1).AsString());
    host->Put(kSequenceB, kReviewLinkURLKey, u"http://127.0.0.1:8080/r/abc");
    host->SetActive(kSequenceB);
    ASSERT_TRUE(encoder->Renders().empty());

    toasts.PressButton(0);

    const auto renders = encoder->Renders();
    ASSERT_EQ(renders.size(), 1u);
    const auto job = process.GetJobW(renders[0].jobID);
    ASSERT_TRUE(job);
    EXPECT_EQ(job->GetProcessingGuids(), kSequenceB);
    EXPECT_FALSE(manager.HasActiveShareJobs());  // the test's own manager was not asked
}

}  // namespace
}  // namespace vantrokelui::model
