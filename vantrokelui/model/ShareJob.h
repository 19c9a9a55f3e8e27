// The record of one share of one sequence, from the request to render until the link is final.
// Made only by ShareManager::AddJobToMap and always held by std::shared_ptr: the manager's map
// holds one reference and every callback that must outlive a lookup holds its own, so a late
// callback can still write to a job that has left the map.
//
// Threads: written from whichever thread delivers a report (the host's, the cloud library's)
// and read on the main thread. The scalars that change with every report (status, progress,
// remaining time, speed, add-to-link) are atomics, so those hot paths take no lock; the Guids,
// texts, start time and total-time history sit behind one small mutex, which no method holds
// while calling anything outside the job. Every method is safe on any thread.
//
//   auto job = std::make_shared<ShareJob>(guids, EncodingAttributes{EncodingStatus::Queued, 0.0},
//                                         review, outputPath);
//   job->SetEncodingProgress(0.5);
#pragma once

#include <atomic>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <kelui/utility/OS_Time.h>
#include <vantrokelui/model/EncodingAttributes.h>
#include <vantrokelui/model/EncodingStatus.h>
#include <vantrokelui/model/ProcessingGuids.h>
#include <vantrokelui/model/ReviewAttributes.h>

namespace vantrokelui::model {

class ShareJob {
public:
    ShareJob(const ProcessingGuids& processingGuids, const EncodingAttributes& encodingAttributes,
             const ReviewAttributes& reviewAttributes, kelcore::string::string outputFilePath);
    /// A member-wise deep copy, history included, of one consistent snapshot of `other`'s
    /// locked fields.
    ShareJob(const ShareJob& other);
    ShareJob& operator=(const ShareJob& other);
    virtual ~ShareJob();

    kelcore::utility::Guid GetProcessingProjectGuid() const;
    void SetProcessingProjectGuid(const kelcore::utility::Guid& guid);
    kelcore::utility::Guid GetProcessingSequenceGuid() const;
    void SetProcessingSequenceGuid(const kelcore::utility::Guid& guid);
    /// Project and sequence together, read under one lock.
    ProcessingGuids GetProcessingGuids() const;

    kelcore::string::string GetOutputFilePath() const;
    void SetOutputFilePath(const kelcore::string::string& path);

    bool GetAddToLink() const;
    void SetAddToLink(bool add);

    kelcore::utility::Guid GetVersionStackGuid() const;
    void SetVersionStackGuid(const kelcore::utility::Guid& guid);

    kelcore::utility::Guid GetReviewLinkGuid() const;
    void SetReviewLinkGuid(const kelcore::utility::Guid& guid);

    kelcore::string::string GetReviewLinkURL() const;
    void SetReviewLinkURL(const kelcore::string::string& url);

    EncodingStatus GetEncodingStatus() const;
    void SetEncodingStatus(EncodingStatus status);

    /// Fraction done of the current stage, encoding or upload.
    double GetEncodingProgress() const;
    void SetEncodingProgress(double progress);

    /// The running transfer's identity; empty until the upload has been asked for.
    kelcore::string::string GetUploadingJobID() const;
    void SetUploadingJobID(const kelcore::string::string& id);

    /// Empty until set; nothing in the job ever empties it again.
    std::optional<kelui::utility::OS_Time> GetEncodeStartTime() const;
    /// Engages the start time (or moves it, when called again).
    void SetEncodeStartTime(const kelui::utility::OS_Time& time);

    /// Last published upload estimate, seconds.
    double GetProcessingRemainingTime() const;
    void SetProcessingRemainingTime(double seconds);

    /// Last upload speed, megabits per second.
    double GetUploadingSpeed() const;
    void SetUploadingSpeed(double megabitsPerSecond);

    /// Appends an estimate of the whole stage's duration, in seconds, at the back.
    void AddToTotalTimeList(double seconds);
    void ClearTotalTimeList();
    /// A copy of the history, oldest first.
    std::deque<double> GetTotalTimeList() const;
    /// The mean of the whole history; empty with fewer than two entries. Changes nothing.
    std::optional<double> CalculateAverageTotalTime() const;
    /// The sliding window: when the history is longer than `size`, drops exactly one entry from
    /// the front (never more); then answers the mean if the length equals `size`, else nothing.
    /// It mutates although it reads like a query.
    std::optional<double> CalculateAverageTotalTimeForSize(std::size_t size);

private:
    // The mean of totalTimeList, front to back; not-a-number when empty. Caller holds `mutex`.
    double GetAverageTotalTime() const;

    // Guards every field that is not atomic. Never held while calling out of the job.
    mutable std::mutex mutex;
    ProcessingGuids processingGuids;
    kelcore::utility::Guid uploadFolderGuid;  // kept; the upload reads the folder from the sequence
    kelcore::string::string outputFilePath;
    std::atomic<bool> addToLink;
    kelcore::utility::Guid versionStackGuid;
    kelcore::utility::Guid reviewLinkGuid;
    kelcore::string::string reviewLinkURL;
    std::atomic<EncodingStatus> encodingStatus;
    std::atomic<double> encodingProgress;
    kelcore::string::string uploadingJobID;
    std::optional<kelui::utility::OS_Time> encodeStartTime;
    std::deque<double> totalTimeList;
    std::atomic<double> processingRemainingTime{0.0};
    std::atomic<double> uploadingSpeed{0.0};
};

}  // namespace vantrokelui::model
