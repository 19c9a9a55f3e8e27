#include <vantrokelui/model/ShareJob.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <deque>
#include <latch>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/threads/VirtualTime.h>
#include <kelui/utility/OS_Time.h>

#include "vantrokelui/support/FakeSequenceHost.h"

namespace vantrokelui::model {
namespace {

using kelcore::utility::Guid;
using testing::U16;

ShareJob MakeJob() {
    const ProcessingGuids guids{Guid(1, 2), Guid(3, 4)};
    ReviewAttributes review;
    review.uploadFolderGuid = Guid(5, 6);
    review.addToLink = true;
    review.versionStackGuid = Guid(7, 8);
    review.reviewLinkGuid = Guid(9, 10);
    review.reviewLinkURL = U16("https://review.example/l/1");
    return ShareJob(guids, EncodingAttributes{EncodingStatus::Queued, 0.25}, review,
                    U16("/cache/out.mp4"));
}

void Fill(ShareJob& job, std::initializer_list<double> entries) {
    for (const double entry : entries) {
        job.AddToTotalTimeList(entry);
    }
}

TEST(ShareJob, TakesItsFieldsFromTheRecordsAndStartsTheRestEmpty) {
    const ShareJob job = MakeJob();
    EXPECT_EQ(job.GetProcessingProjectGuid(), Guid(1, 2));
    EXPECT_EQ(job.GetProcessingSequenceGuid(), Guid(3, 4));
    EXPECT_EQ(job.GetOutputFilePath(), U16("/cache/out.mp4"));
    EXPECT_TRUE(job.GetAddToLink());
    EXPECT_EQ(job.GetVersionStackGuid(), Guid(7, 8));
    EXPECT_EQ(job.GetReviewLinkGuid(), Guid(9, 10));
    EXPECT_EQ(job.GetReviewLinkURL(), U16("https://review.example/l/1"));
    EXPECT_EQ(job.GetEncodingStatus(), EncodingStatus::Queued);
    EXPECT_EQ(job.GetEncodingProgress(), 0.25);
    EXPECT_TRUE(job.GetUploadingJobID().empty());
    EXPECT_FALSE(job.GetEncodeStartTime().has_value());
    EXPECT_TRUE(job.GetTotalTimeList().empty());
    EXPECT_EQ(job.GetProcessingRemainingTime(), 0.0);
    EXPECT_EQ(job.GetUploadingSpeed(), 0.0);
}

TEST(ShareJob, EachSetterWritesOnlyItsOwnField) {
    ShareJob job = MakeJob();
    job.SetProcessingProjectGuid(Guid(11, 1));
    EXPECT_EQ(job.GetProcessingProjectGuid(), Guid(11, 1));
    EXPECT_EQ(job.GetProcessingSequenceGuid(), Guid(3, 4));
    job.SetProcessingSequenceGuid(Guid(12, 1));
    EXPECT_EQ(job.GetProcessingGuids(), (ProcessingGuids{Guid(11, 1), Guid(12, 1)}));
    job.SetOutputFilePath(U16("/other.mov"));
    EXPECT_EQ(job.GetOutputFilePath(), U16("/other.mov"));
    job.SetAddToLink(false);
    EXPECT_FALSE(job.GetAddToLink());
    job.SetVersionStackGuid(Guid(13, 1));
    EXPECT_EQ(job.GetVersionStackGuid(), Guid(13, 1));
    job.SetReviewLinkGuid(Guid(14, 1));
    EXPECT_EQ(job.GetReviewLinkGuid(), Guid(14, 1));
    EXPECT_EQ(job.GetVersionStackGuid(), Guid(13, 1));
    job.SetReviewLinkURL(U16(""));
    EXPECT_TRUE(job.GetReviewLinkURL().empty());
    job.SetEncodingStatus(EncodingStatus::UploadCancelled);
    EXPECT_EQ(job.GetEncodingStatus(), EncodingStatus::UploadCancelled);
    job.SetEncodingProgress(0.75);
    EXPECT_EQ(job.GetEncodingProgress(), 0.75);
    job.SetUploadingJobID(U16("transfer-7"));
    EXPECT_EQ(job.GetUploadingJobID(), U16("transfer-7"));
    job.SetProcessingRemainingTime(42.5);
    EXPECT_EQ(job.GetProcessingRemainingTime(), 42.5);
    EXPECT_EQ(job.GetUploadingSpeed(), 0.0);
    job.SetUploadingSpeed(8.25);
    EXPECT_EQ(job.GetUploadingSpeed(), 8.25);
    EXPECT_EQ(job.GetProcessingRemainingTime(), 42.5);
}

TEST(ShareJob, HistoryAppendsAtTheBackAndClears) {
    ShareJob job = MakeJob();
    Fill(job, {3.0, 1.0, 2.0});
    EXPECT_EQ(job.GetTotalTimeList(), (std::deque<double>{3.0, 1.0, 2.0}));
    std::deque<double> copy = job.GetTotalTimeList();
    copy.clear();
    EXPECT_EQ(job.GetTotalTimeList().size(), 3u);  // the getter answered a copy
    job.ClearTotalTimeList();
    EXPECT_TRUE(job.GetTotalTimeList().empty());
}

TEST(ShareJob, AverageOfOneEntryIsEmptyThoughOneCouldBeTaken) {
    ShareJob job = MakeJob();
    EXPECT_FALSE(job.CalculateAverageTotalTime().has_value());
    job.AddToTotalTimeList(10.0);
    EXPECT_FALSE(job.CalculateAverageTotalTime().has_value());
}

TEST(ShareJob, AverageOfTwoOrMoreIsTheMeanAndChangesNothing) {
    ShareJob job = MakeJob();
    Fill(job, {10.0, 20.0});
    EXPECT_EQ(job.CalculateAverageTotalTime(), 15.0);
    job.AddToTotalTimeList(60.0);
    EXPECT_EQ(job.CalculateAverageTotalTime(), 30.0);
    EXPECT_EQ(job.GetTotalTimeList(), (std::deque<double>{10.0, 20.0, 60.0}));
}

TEST(ShareJob, WindowOfEightOnNineEntriesDropsTheOldestAndAveragesTheOtherEight) {
    ShareJob job = MakeJob();
    Fill(job, {1000.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0});
    EXPECT_EQ(job.CalculateAverageTotalTimeForSize(8), 4.5);
    EXPECT_EQ(job.GetTotalTimeList(), (std::deque<double>{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0}));
}

TEST(ShareJob, WindowOfEightOnTenEntriesDropsOnlyOneAndAnswersEmpty) {
    ShareJob job = MakeJob();
    Fill(job, {0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0});
    EXPECT_FALSE(job.CalculateAverageTotalTimeForSize(8).has_value());
    EXPECT_EQ(job.GetTotalTimeList(),
              (std::deque<double>{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0}));
}

TEST(ShareJob, WindowCalledTwiceOnNineEntriesIsHarmlessTheSecondTime) {
    ShareJob job = MakeJob();
    Fill(job, {100.0, 2.0, 2.0, 2.0, 2.0, 4.0, 4.0, 4.0, 4.0});
    EXPECT_EQ(job.CalculateAverageTotalTimeForSize(8), 3.0);
    EXPECT_EQ(job.CalculateAverageTotalTimeForSize(8), 3.0);
    EXPECT_EQ(job.GetTotalTimeList().size(), 8u);
}

TEST(ShareJob, WindowLongerThanTheHistoryAnswersEmptyAndKeepsIt) {
    ShareJob job = MakeJob();
    Fill(job, {1.0, 2.0, 3.0});
    EXPECT_FALSE(job.CalculateAverageTotalTimeForSize(8).has_value());
    EXPECT_EQ(job.GetTotalTimeList(), (std::deque<double>{1.0, 2.0, 3.0}));
}

TEST(ShareJob, WindowOfZeroEmptiesAOneEntryHistoryAndAnswersNotANumber) {
    ShareJob job = MakeJob();
    job.AddToTotalTimeList(5.0);
    const std::optional<double> average = job.CalculateAverageTotalTimeForSize(0);
    ASSERT_TRUE(average.has_value());
    EXPECT_TRUE(std::isnan(*average));
    EXPECT_TRUE(job.GetTotalTimeList().empty());
}

TEST(ShareJob, EncodeStartTimeStaysSetThroughEveryOtherChange) {
    kelcore::threads::VirtualTime time;
    ShareJob job = MakeJob();
    const kelui::utility::OS_Time start = kelui::utility::CurrentTime();
    job.SetEncodeStartTime(start);

    time.AdvanceBy(std::chrono::seconds(90));
    job.SetEncodingStatus(EncodingStatus::Encoded);
    job.SetEncodingStatus(EncodingStatus::Uploading);
    job.SetEncodingProgress(0.0);
    job.SetUploadingJobID(U16("transfer"));
    Fill(job, {1.0, 2.0, 3.0});
    job.ClearTotalTimeList();
    job.SetProcessingRemainingTime(1.0);
    job.SetUploadingSpeed(2.0);
    const ShareJob copy = job;

    ASSERT_TRUE(job.GetEncodeStartTime().has_value());
    EXPECT_EQ(*job.GetEncodeStartTime(), start);
    EXPECT_EQ(copy.GetEncodeStartTime(), start);
    // An upload that starts now still measures from the first moment.
    EXPECT_DOUBLE_EQ(kelui::utility::CurrentTime() - *job.GetEncodeStartTime(), 90.0);
}

TEST(ShareJob, CopyIsDeepAndIncludesTheHistory) {
    ShareJob original = MakeJob();
    Fill(original, {1.0, 2.0});
    original.SetUploadingJobID(U16("t1"));
    original.SetUploadingSpeed(3.0);
    const ShareJob copy(original);

    original.AddToTotalTimeList(3.0);
    original.SetReviewLinkURL(U16("changed"));
    original.SetUploadingJobID(U16("t2"));
    original.SetEncodingStatus(EncodingStatus::UploadDone);

    EXPECT_EQ(copy.GetTotalTimeList(), (std::deque<double>{1.0, 2.0}));
    EXPECT_EQ(copy.GetReviewLinkURL(), U16("https://review.example/l/1"));
    EXPECT_EQ(copy.GetUploadingJobID(), U16("t1"));
    EXPECT_EQ(copy.GetEncodingStatus(), EncodingStatus::Queued);
    EXPECT_EQ(copy.GetUploadingSpeed(), 3.0);
    EXPECT_EQ(copy.GetProcessingGuids(), original.GetProcessingGuids());
}

TEST(ShareJob, AssignmentCopiesEveryFieldAndSelfAssignmentKeepsThem) {
    ShareJob source = MakeJob();
    Fill(source, {4.0});
    source.SetEncodeStartTime(kelui::utility::OS_Time());
    ShareJob target(ProcessingGuids{}, EncodingAttributes{}, ReviewAttributes{}, U16(""));
    target = source;
    EXPECT_EQ(target.GetProcessingSequenceGuid(), Guid(3, 4));
    EXPECT_EQ(target.GetOutputFilePath(), U16("/cache/out.mp4"));
    EXPECT_TRUE(target.GetAddToLink());
    EXPECT_EQ(target.GetReviewLinkGuid(), Guid(9, 10));
    EXPECT_EQ(target.GetEncodingProgress(), 0.25);
    EXPECT_TRUE(target.GetEncodeStartTime().has_value());
    EXPECT_EQ(target.GetTotalTimeList(), (std::deque<double>{4.0}));

    ShareJob& alias = target;
    target = alias;
    EXPECT_EQ(target.GetTotalTimeList(), (std::deque<double>{4.0}));
    EXPECT_EQ(target.GetVersionStackGuid(), Guid(7, 8));
}

// Reports arrive on other threads while the panel reads: every field must stay race free. The
// reader keeps reading until both writers are done, so its reads overlap all of their writes.
TEST(ShareJob, WritersOnTwoThreadsAndAReaderDoNotRace) {
    auto job = std::make_shared<ShareJob>(MakeJob());
    constexpr int kRounds = 2000;
    std::atomic<int> writersLeft{2};
    std::latch start(3);
    std::thread progress([job, &writersLeft, &start] {
        start.arrive_and_wait();
        for (int i = 1; i <= kRounds; ++i) {
            job->SetEncodingProgress(i / double(kRounds));
            job->SetEncodingStatus(EncodingStatus::Uploading);
            job->SetUploadingSpeed(i);
        }
        --writersLeft;
    });
    std::thread history([job, &writersLeft, &start] {
        start.arrive_and_wait();
        for (int i = 0; i < kRounds; ++i) {
            job->AddToTotalTimeList(i);
            job->CalculateAverageTotalTimeForSize(8);
            job->SetUploadingJobID(U16(i % 2 ? "transfer" : "a longer transfer identity"));
            job->SetVersionStackGuid(Guid(1, static_cast<std::uint64_t>(i)));
            job->SetReviewLinkURL(U16(i % 2 ? "https://r/1" : "https://review.example/l/2"));
        }
        --writersLeft;
    });
    start.arrive_and_wait();
    do {
        (void)job->GetEncodingProgress();
        (void)job->GetUploadingJobID();
        (void)job->GetVersionStackGuid();
        (void)job->GetReviewLinkURL();
        (void)job->GetTotalTimeList();
        (void)ShareJob(*job);
    } while (writersLeft.load() > 0);
    progress.join();
    history.join();
    EXPECT_EQ(job->GetEncodingProgress(), 1.0);
    EXPECT_EQ(job->GetUploadingSpeed(), double(kRounds));
    EXPECT_EQ(job->GetTotalTimeList().size(), 8u);
    EXPECT_EQ(job->GetVersionStackGuid(), Guid(1, kRounds - 1));
    EXPECT_EQ(job->GetUploadingJobID(), U16("transfer"));
}

}  // namespace
}  // namespace vantrokelui::model
