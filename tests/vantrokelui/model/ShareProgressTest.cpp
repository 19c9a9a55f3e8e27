// The host's reports and the upload's progress, turned into the figures of the progress screen:
// status and fraction stored in the job, elapsed time on kelcore's clock (driven here by virtual
// time), the two estimators of time left with their deliberate differences, and the speed.
#include <vantrokelui/model/ShareManager.h>

#include <cmath>
#include <deque>

#include <gtest/gtest.h>

#include <kelcore/appstatemanager/AppStateManager.h>
#include <kelcore/threads/VirtualTime.h>
#include <vantrokelui/model/ShareModel.h>

#include "ShareTestFixture.h"
#include "vantrokelui/support/RecordingToastManager.h"

namespace vantrokelui::model {
namespace {

using std::chrono::seconds;
using testing::ShareTestFixture;
using testing::U16;
using vantrokelui::testing::RecordingToastManager;

class ShareProgressTest : public ShareTestFixture {
protected:
    void SetUp() override {
        ShareTestFixture::SetUp();
        job = FileJob("job-a", kSequenceA, EncodingStatus::Encoding);
        other = FileJob("job-b", kSequenceB, EncodingStatus::Encoding);
        Activate(kSequenceA);
        ASSERT_EQ(manager.GetActiveSequenceJobID(), u"job-a");
        panel->ClearWrites();
    }

    // Encoding samples with fraction 0.5 at elapsed 1, 2, ... `count` seconds: totals 2, 4, ...
    void EncodingSamples(int first, int last) {
        for (int elapsed = first; elapsed <= last; ++elapsed) {
            manager.SetEncodingRemainingTimeForJob(u"job-a", elapsed, 0.5);
        }
    }

    std::vector<std::string> RemainingWrites() const {
        return panel->WritesOf("ProcessingRemainingTime");
    }

    std::shared_ptr<ShareJob> job;
    std::shared_ptr<ShareJob> other;
};

// --- the host's reports ------------------------------------------------------------------------

TEST_F(ShareProgressTest, AStatusReportIsStoredInTheJobAndSetsNoProperty) {
    manager.SetShareJobEncodingStatusForJob(EncodingStatus::Encoded, u"job-a");

    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::Encoded);
    EXPECT_TRUE(panel->Writes().empty());
    EXPECT_EQ(manager.GetShareJobEncodingStatus(), EncodingStatus::Encoded);
}

TEST_F(ShareProgressTest, TheHostsStatusIsStoredWithoutAnyCheck) {
    job->SetEncodingStatus(EncodingStatus::UploadDone);

    manager.SetShareJobEncodingStatusForJob(EncodingStatus::Queued, u"job-a");

    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::Queued);
}

TEST_F(ShareProgressTest, EncodingFailedFailsTheShareWithTheEncodingToast) {
    RecordingToastManager toasts;
    const string path = job->GetOutputFilePath();
    WriteFile(path);

    manager.SetShareJobEncodingStatusForJob(EncodingStatus::EncodingFailed, u"job-a");
    Pump();

    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::EncodingFailed);
    EXPECT_FALSE(manager.GetJobW(u"job-a"));
    EXPECT_TRUE(manager.GetActiveSequenceJobID().empty());
    EXPECT_FALSE(FileExists(path));
    EXPECT_EQ(panel->Writes(), std::vector<std::string>{"CurrentViewID=0"});
    const auto shown = toasts.Toasts();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].message, "Encoding \"Cut 1.mp4\" failed. See Sarvex for details.");
    EXPECT_TRUE(shown[0].buttonLabel.empty());
}

TEST_F(ShareProgressTest, EncodingFailedForAnUnknownJobHasNoEffectAtAll) {
    RecordingToastManager toasts;

    manager.SetShareJobEncodingStatusForJob(EncodingStatus::EncodingFailed, u"job-x");
    Pump();

    EXPECT_TRUE(toasts.Toasts().empty());
    EXPECT_TRUE(panel->Writes().empty());
    EXPECT_EQ(manager.GetJobCount(), 2u);
    EXPECT_EQ(manager.GetActiveSequenceJobID(), u"job-a");
}

TEST_F(ShareProgressTest, AProgressReportIsStoredInTheJobOnly) {
    manager.SetShareJobEncodingProgressForJob(0.25, u"job-a");
    manager.SetShareJobEncodingProgressForJob(0.75, u"job-x");

    EXPECT_EQ(job->GetEncodingProgress(), 0.25);
    EXPECT_EQ(other->GetEncodingProgress(), 0.0);
    EXPECT_TRUE(panel->Writes().empty());
}

// --- elapsed time ------------------------------------------------------------------------------

TEST_F(ShareProgressTest, TheFirstElapsedQueryStartsTheJobsClock) {
    kelcore::threads::VirtualTime time;
    ASSERT_FALSE(job->GetEncodeStartTime());

    EXPECT_EQ(manager.GetElapsedTime(u"job-a"), 0.0);
    ASSERT_TRUE(job->GetEncodeStartTime());
    time.AdvanceBy(seconds(3));
    EXPECT_EQ(manager.GetElapsedTime(u"job-a"), 3.0);
    time.AdvanceBy(std::chrono::milliseconds(1500));
    EXPECT_EQ(manager.GetElapsedTime(u"job-a"), 4.5);
    EXPECT_EQ(manager.GetElapsedTime(u"job-x"), 0.0);
}

TEST_F(ShareProgressTest, TheStartTimeStaysForTheJobsLifeSoTheUploadMeasuresFromIt) {
    kelcore::threads::VirtualTime time;
    manager.GetElapsedTime(u"job-a");  // the encoder's first report
    time.AdvanceBy(seconds(10));
    manager.SetShareJobEncodingStatusForJob(EncodingStatus::Uploading, u"job-a");
    manager.ClearTotalTimeListForJob(u"job-a");
    time.AdvanceBy(seconds(2));

    manager.HandleUploadProgress(job, u"job-a", 60, 100);

    // 12 s since the first query: 60 bytes in 12 s, and one sample of 20 s in the history.
    EXPECT_DOUBLE_EQ(job->GetUploadingSpeed(), 60 * 8e-06 / 12.0);
    EXPECT_EQ(job->GetTotalTimeList(), std::deque<double>{(1.0 / 0.6) * 12.0});
}

// --- the encoding estimator --------------------------------------------------------------------

TEST_F(ShareProgressTest, SevenEncodingSamplesPublishNothingAndTheEighthTheMeanOfEight) {
    EncodingSamples(1, 7);
    EXPECT_TRUE(RemainingWrites().empty());
    EXPECT_EQ(job->GetTotalTimeList().size(), 7u);

    manager.SetEncodingRemainingTimeForJob(u"job-a", 8, 0.5);

    // Totals 2, 4, ..., 16: mean 9, less 8 s elapsed, plus 0.5 s.
    EXPECT_EQ(RemainingWrites(), std::vector<std::string>{"1.5"});
    EXPECT_EQ(panel->GetProcessingRemainingTime(), 1.5);
    EXPECT_EQ(job->GetTotalTimeList().size(), 8u);
}

TEST_F(ShareProgressTest, TheNinthEncodingSampleDropsTheFirst) {
    EncodingSamples(1, 9);

    // Totals 4, 6, ..., 18: mean 11, less 9 s elapsed, plus 0.5 s.
    EXPECT_EQ(RemainingWrites(), (std::vector<std::string>{"1.5", "2.5"}));
    EXPECT_EQ(panel->GetProcessingRemainingTime(), 2.5);
    EXPECT_EQ(job->GetTotalTimeList(), (std::deque<double>{4, 6, 8, 10, 12, 14, 16, 18}));
}

TEST_F(ShareProgressTest, ANegativeEncodingEstimateIsPublishedAsZero) {
    for (int elapsed = 1; elapsed <= 7; ++elapsed) {
        manager.SetEncodingRemainingTimeForJob(u"job-a", elapsed, 1.0);
    }
    // Totals 1..7 and 100: mean 16, elapsed 100.
    manager.SetEncodingRemainingTimeForJob(u"job-a", 100, 1.0);

    EXPECT_EQ(RemainingWrites(), std::vector<std::string>{"0"});
    EXPECT_EQ(panel->GetProcessingRemainingTime(), 0.0);
    EXPECT_FALSE(std::signbit(panel->GetProcessingRemainingTime()));
}

TEST_F(ShareProgressTest, TheEncodingEstimateGoesToThePanelForAnyJobAndIsNotKept) {
    for (int elapsed = 1; elapsed <= 8; ++elapsed) {
        manager.SetEncodingRemainingTimeForJob(u"job-b", elapsed, 0.5);
    }

    EXPECT_EQ(RemainingWrites(), std::vector<std::string>{"1.5"});
    EXPECT_EQ(other->GetProcessingRemainingTime(), 0.0);
    EXPECT_TRUE(job->GetTotalTimeList().empty());
}

TEST_F(ShareProgressTest, AnEncodingSampleForAnUnknownJobIsIgnored) {
    manager.SetEncodingRemainingTimeForJob(u"job-x", 8, 0.5);

    EXPECT_TRUE(panel->Writes().empty());
    EXPECT_TRUE(job->GetTotalTimeList().empty());
}

// --- the upload estimator ----------------------------------------------------------------------

TEST_F(ShareProgressTest, OneUploadSamplePublishesNothingAndTheSecondTheMeanOfTwo) {
    manager.SetUploadingRemainingTimeForJob(u"job-a", 1, 0.5);
    EXPECT_TRUE(RemainingWrites().empty());
    EXPECT_EQ(job->GetProcessingRemainingTime(), 0.0);

    manager.SetUploadingRemainingTimeForJob(u"job-a", 3, 0.5);

    // Totals 2 and 6: mean 4, less 3 s elapsed, plus 0.5 s.
    EXPECT_EQ(job->GetProcessingRemainingTime(), 1.5);
    EXPECT_EQ(RemainingWrites(), std::vector<std::string>{"1.5"});
}

TEST_F(ShareProgressTest, TheUploadMeanRunsOverTheWholeHistoryWithoutAWindow) {
    for (int elapsed = 1; elapsed <= 10; ++elapsed) {
        manager.SetUploadingRemainingTimeForJob(u"job-a", elapsed, 0.5);
    }

    // Totals 2..20: mean 11, less 10 s, plus 0.5 s; nothing was dropped.
    EXPECT_EQ(job->GetTotalTimeList().size(), 10u);
    EXPECT_EQ(job->GetProcessingRemainingTime(), 1.5);
    EXPECT_EQ(RemainingWrites().size(), 9u);
}

TEST_F(ShareProgressTest, AnUploadReportForAnotherSequenceChangesTheJobButNoProperty) {
    manager.SetUploadingRemainingTimeForJob(u"job-b", 1, 0.5);
    manager.SetUploadingRemainingTimeForJob(u"job-b", 3, 0.5);
    manager.SetUploadingSpeedForJob(u"job-b", 2, 0.5, 1e6);

    EXPECT_EQ(other->GetProcessingRemainingTime(), 1.5);
    EXPECT_DOUBLE_EQ(other->GetUploadingSpeed(), 4.0);
    EXPECT_TRUE(panel->Writes().empty());
}

TEST_F(ShareProgressTest, EncodingSamplesLeftInTheHistoryCountInTheUploadMean) {
    EncodingSamples(1, 3);  // totals 2, 4, 6; too few to publish
    ASSERT_TRUE(RemainingWrites().empty());

    manager.SetUploadingRemainingTimeForJob(u"job-a", 4, 0.5);

    // Totals 2, 4, 6, 8: mean 5, less 4 s, plus 0.5 s; a lone upload sample would publish nothing.
    EXPECT_EQ(job->GetProcessingRemainingTime(), 1.5);
    EXPECT_EQ(RemainingWrites(), std::vector<std::string>{"1.5"});
}

TEST_F(ShareProgressTest, ClearingTheHistoryStartsTheUploadMeanAfresh) {
    EncodingSamples(1, 3);
    manager.ClearTotalTimeListForJob(u"job-a");

    manager.SetUploadingRemainingTimeForJob(u"job-a", 4, 0.5);

    EXPECT_TRUE(RemainingWrites().empty());
    EXPECT_EQ(job->GetTotalTimeList(), std::deque<double>{8});
}

TEST_F(ShareProgressTest, ANegativeUploadEstimateIsStoredAndPublishedAsZero) {
    manager.SetUploadingRemainingTimeForJob(u"job-a", 1, 1.0);
    manager.SetUploadingRemainingTimeForJob(u"job-a", 100, 1.0);

    EXPECT_EQ(job->GetProcessingRemainingTime(), 0.0);
    EXPECT_EQ(RemainingWrites(), std::vector<std::string>{"0"});
}

// --- speed -------------------------------------------------------------------------------------

TEST_F(ShareProgressTest, TheSpeedIsTheMeanInMegabitsPerSecondSinceTheStart) {
    manager.SetUploadingSpeedForJob(u"job-a", 2, 0.9, 1e6);

    EXPECT_DOUBLE_EQ(job->GetUploadingSpeed(), 4.0);
    ASSERT_EQ(panel->WritesOf("UploadingSpeed").size(), 1u);
    EXPECT_DOUBLE_EQ(panel->GetUploadingSpeed(), 4.0);
    // The fraction plays no part.
    manager.SetUploadingSpeedForJob(u"job-a", 2, 0.1, 1e6);
    EXPECT_DOUBLE_EQ(job->GetUploadingSpeed(), 4.0);
}

// --- the upload's progress callback ------------------------------------------------------------

TEST_F(ShareProgressTest, UploadProgressFeedsProgressSpeedAndTheEstimate) {
    kelcore::threads::VirtualTime time;
    manager.GetElapsedTime(u"job-a");
    time.AdvanceBy(seconds(2));

    manager.HandleUploadProgress(job, u"job-a", 25, 100);

    EXPECT_EQ(job->GetEncodingProgress(), 0.25);
    EXPECT_EQ(panel->GetEncodingProgress(), 0.25);
    EXPECT_DOUBLE_EQ(job->GetUploadingSpeed(), 25 * 8e-06 / 2);
    EXPECT_TRUE(RemainingWrites().empty());  // one sample so far

    time.AdvanceBy(seconds(2));
    manager.HandleUploadProgress(job, u"job-a", 50, 100);

    // Totals 8 and 8: mean 8, less 4 s, plus 0.5 s.
    EXPECT_EQ(job->GetProcessingRemainingTime(), 4.5);
    EXPECT_EQ(panel->GetProcessingRemainingTime(), 4.5);
    EXPECT_EQ(panel->WritesOf("EncodingProgress"), (std::vector<std::string>{"0.25", "0.5"}));
    // Speed before the estimate, for each report.
    std::vector<std::string> order;
    for (const std::string& write : panel->Writes()) {
        order.push_back(write.substr(0, write.find('=')));
    }
    EXPECT_EQ(order,
              (std::vector<std::string>{"EncodingProgress", "UploadingSpeed", "EncodingProgress",
                                        "UploadingSpeed", "ProcessingRemainingTime"}));
}

TEST_F(ShareProgressTest, NothingSentPublishesZeroProgressAndNoSpeedOrEstimate) {
    kelcore::threads::VirtualTime time;
    manager.GetElapsedTime(u"job-a");
    time.AdvanceBy(seconds(5));
    job->SetEncodingProgress(0.8);  // left from the encoder

    manager.HandleUploadProgress(job, u"job-a", 0, 1000);

    EXPECT_EQ(job->GetEncodingProgress(), 0.0);
    EXPECT_EQ(panel->Writes(), std::vector<std::string>{"EncodingProgress=0"});
    EXPECT_EQ(job->GetUploadingSpeed(), 0.0);
    EXPECT_TRUE(job->GetTotalTimeList().empty());
}

TEST_F(ShareProgressTest, TheFirstProgressReportOnlyStartsTheClock) {
    kelcore::threads::VirtualTime time;

    manager.HandleUploadProgress(job, u"job-a", 10, 100);

    EXPECT_EQ(job->GetEncodingProgress(), 0.1);
    EXPECT_TRUE(job->GetEncodeStartTime());
    EXPECT_TRUE(job->GetTotalTimeList().empty());
    EXPECT_EQ(job->GetUploadingSpeed(), 0.0);
}

TEST_F(ShareProgressTest, UploadProgressOfAnotherSequencesJobStaysInTheJob) {
    kelcore::threads::VirtualTime time;
    manager.GetElapsedTime(u"job-b");
    time.AdvanceBy(seconds(2));

    manager.HandleUploadProgress(other, u"job-b", 50, 100);
    time.AdvanceBy(seconds(2));
    manager.HandleUploadProgress(other, u"job-b", 100, 100);

    EXPECT_EQ(other->GetEncodingProgress(), 1.0);
    EXPECT_GT(other->GetUploadingSpeed(), 0.0);
    EXPECT_EQ(other->GetProcessingRemainingTime(), 0.5);  // totals 4 and 4, 4 s elapsed
    EXPECT_TRUE(panel->Writes().empty());
}

// --- the free functions, through the process's manager ------------------------------------------

class ShareProgressFreeFunctionsTest : public ShareTestFixture {
protected:
    void SetUp() override {
        ShareTestFixture::SetUp();
        InjectInto(ShareManager::GetInstance());
        ShareManager::GetInstance().AddJobToMap(u"job-a", kSequenceA,
                                                EncodingAttributes{EncodingStatus::Queued, 0.0}, {},
                                                OutputPath("Cut 1.mp4"));
        job = ShareManager::GetInstance().GetJobW(u"job-a");
    }
    void TearDown() override {
        ShareTestFixture::TearDown();
        kelcore::appstatemanager::ResetForTesting();
    }

    std::shared_ptr<ShareJob> job;
};

TEST_F(ShareProgressFreeFunctionsTest, TheEncodingGuardTakesNoSampleBeforeTimeOrProgress) {
    kelcore::threads::VirtualTime time;

    SetEncodingRemainingTimeForJob(u"job-a", 0.5);  // starts the clock: 0 s elapsed
    EXPECT_TRUE(job->GetEncodeStartTime());
    EXPECT_TRUE(job->GetTotalTimeList().empty());
    time.AdvanceBy(seconds(1));
    SetEncodingRemainingTimeForJob(u"job-a", 0.0);
    EXPECT_TRUE(job->GetTotalTimeList().empty());

    SetEncodingRemainingTimeForJob(u"job-a", 0.5);

    EXPECT_EQ(job->GetTotalTimeList(), std::deque<double>{2.0});
}

TEST_F(ShareProgressFreeFunctionsTest, TheEncodingGuardFeedsTheEstimatorUntilItPublishes) {
    kelcore::threads::VirtualTime time;
    SetEncodingRemainingTimeForJob(u"job-a", 0.5);
    for (int second = 1; second <= 8; ++second) {
        time.AdvanceBy(seconds(1));
        SetEncodingRemainingTimeForJob(u"job-a", 0.5);
    }

    // Totals 2, 4, ..., 16 at 8 s: 9 - 8 + 0.5.
    EXPECT_EQ(panel->WritesOf("ProcessingRemainingTime"), std::vector<std::string>{"1.5"});
}

TEST_F(ShareProgressFreeFunctionsTest, TheReportsReachTheProcesssManager) {
    SetShareJobEncodingStatusForJob(EncodingStatus::Encoding, u"job-a");
    SetShareJobEncodingProgressForJob(0.4, u"job-a");
    job->AddToTotalTimeList(3.0);
    ClearTotalTimeListForJob(u"job-a");

    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::Encoding);
    EXPECT_EQ(job->GetEncodingProgress(), 0.4);
    EXPECT_TRUE(job->GetTotalTimeList().empty());
}

}  // namespace
}  // namespace vantrokelui::model
