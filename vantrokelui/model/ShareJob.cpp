#include <vantrokelui/model/ShareJob.h>

#include <numeric>
#include <utility>

namespace vantrokelui::model {

using kelcore::utility::Guid;

ShareJob::ShareJob(const ProcessingGuids& processingGuids,
                   const EncodingAttributes& encodingAttributes,
                   const ReviewAttributes& reviewAttributes, kelcore::string::string outputFilePath)
    : processingGuids(processingGuids),
      uploadFolderGuid(reviewAttributes.uploadFolderGuid),
      outputFilePath(std::move(outputFilePath)),
      addToLink(reviewAttributes.addToLink),
      versionStackGuid(reviewAttributes.versionStackGuid),
      reviewLinkGuid(reviewAttributes.reviewLinkGuid),
      reviewLinkURL(reviewAttributes.reviewLinkURL),
      encodingStatus(encodingAttributes.status),
      encodingProgress(encodingAttributes.progress) {}

ShareJob::ShareJob(const ShareJob& other) {
    const std::lock_guard lock(other.mutex);
    processingGuids = other.processingGuids;
    uploadFolderGuid = other.uploadFolderGuid;
    outputFilePath = other.outputFilePath;
    addToLink = other.addToLink.load();
    versionStackGuid = other.versionStackGuid;
    reviewLinkGuid = other.reviewLinkGuid;
    reviewLinkURL = other.reviewLinkURL;
    encodingStatus = other.encodingStatus.load();
    encodingProgress = other.encodingProgress.load();
    uploadingJobID = other.uploadingJobID;
    encodeStartTime = other.encodeStartTime;
    totalTimeList = other.totalTimeList;
    processingRemainingTime = other.processingRemainingTime.load();
    uploadingSpeed = other.uploadingSpeed.load();
}

ShareJob& ShareJob::operator=(const ShareJob& other) {
    if (this == &other) {
        return *this;
    }
    // Both locks at once, in a deadlock-free order, should two jobs be assigned crosswise.
    const std::scoped_lock lock(mutex, other.mutex);
    processingGuids = other.processingGuids;
    uploadFolderGuid = other.uploadFolderGuid;
    outputFilePath = other.outputFilePath;
    addToLink = other.addToLink.load();
    versionStackGuid = other.versionStackGuid;
    reviewLinkGuid = other.reviewLinkGuid;
    reviewLinkURL = other.reviewLinkURL;
    encodingStatus = other.encodingStatus.load();
    encodingProgress = other.encodingProgress.load();
    uploadingJobID = other.uploadingJobID;
    encodeStartTime = other.encodeStartTime;
    totalTimeList = other.totalTimeList;
    processingRemainingTime = other.processingRemainingTime.load();
    uploadingSpeed = other.uploadingSpeed.load();
    return *this;
}

ShareJob::~ShareJob() = default;

Guid ShareJob::GetProcessingProjectGuid() const {
    const std::lock_guard lock(mutex);
    return processingGuids.projectGuid;
}

void ShareJob::SetProcessingProjectGuid(const Guid& guid) {
    const std::lock_guard lock(mutex);
    processingGuids.projectGuid = guid;
}

Guid ShareJob::GetProcessingSequenceGuid() const {
    const std::lock_guard lock(mutex);
    return processingGuids.sequenceGuid;
}

void ShareJob::SetProcessingSequenceGuid(const Guid& guid) {
    const std::lock_guard lock(mutex);
    processingGuids.sequenceGuid = guid;
}

ProcessingGuids ShareJob::GetProcessingGuids() const {
    const std::lock_guard lock(mutex);
    return processingGuids;
}

kelcore::string::string ShareJob::GetOutputFilePath() const {
    const std::lock_guard lock(mutex);
    return outputFilePath;
}

void ShareJob::SetOutputFilePath(const kelcore::string::string& path) {
    const std::lock_guard lock(mutex);
    outputFilePath = path;
}

bool ShareJob::GetAddToLink() const {
    return addToLink.load();
}

void ShareJob::SetAddToLink(bool add) {
    addToLink.store(add);
}

Guid ShareJob::GetVersionStackGuid() const {
    const std::lock_guard lock(mutex);
    return versionStackGuid;
}

void ShareJob::SetVersionStackGuid(const Guid& guid) {
    const std::lock_guard lock(mutex);
    versionStackGuid = guid;
}

Guid ShareJob::GetReviewLinkGuid() const {
    const std::lock_guard lock(mutex);
    return reviewLinkGuid;
}

void ShareJob::SetReviewLinkGuid(const Guid& guid) {
    const std::lock_guard lock(mutex);
    reviewLinkGuid = guid;
}

kelcore::string::string ShareJob::GetReviewLinkURL() const {
    const std::lock_guard lock(mutex);
    return reviewLinkURL;
}

void ShareJob::SetReviewLinkURL(const kelcore::string::string& url) {
    const std::lock_guard lock(mutex);
    reviewLinkURL = url;
}

EncodingStatus ShareJob::GetEncodingStatus() const {
    return encodingStatus.load();
}

void ShareJob::SetEncodingStatus(EncodingStatus status) {
    encodingStatus.store(status);
}

double ShareJob::GetEncodingProgress() const {
    return encodingProgress.load();
}

void ShareJob::SetEncodingProgress(double progress) {
    encodingProgress.store(progress);
}

kelcore::string::string ShareJob::GetUploadingJobID() const {
    const std::lock_guard lock(mutex);
    return uploadingJobID;
}

void ShareJob::SetUploadingJobID(const kelcore::string::string& id) {
    const std::lock_guard lock(mutex);
    uploadingJobID = id;
}

std::optional<kelui::utility::OS_Time> ShareJob::GetEncodeStartTime() const {
    const std::lock_guard lock(mutex);
    return encodeStartTime;
}

void ShareJob::SetEncodeStartTime(const kelui::utility::OS_Time& time) {
    const std::lock_guard lock(mutex);
    encodeStartTime = time;
}

double ShareJob::GetProcessingRemainingTime() const {
    return processingRemainingTime.load();
}

void ShareJob::SetProcessingRemainingTime(double seconds) {
    processingRemainingTime.store(seconds);
}

double ShareJob::GetUploadingSpeed() const {
    return uploadingSpeed.load();
}

void ShareJob::SetUploadingSpeed(double megabitsPerSecond) {
    uploadingSpeed.store(megabitsPerSecond);
}

void ShareJob::AddToTotalTimeList(double seconds) {
    const std::lock_guard lock(mutex);
    totalTimeList.push_back(seconds);
}

void ShareJob::ClearTotalTimeList() {
    const std::lock_guard lock(mutex);
    totalTimeList.clear();
}

std::deque<double> ShareJob::GetTotalTimeList() const {
    const std::lock_guard lock(mutex);
    return totalTimeList;
}

std::optional<double> ShareJob::CalculateAverageTotalTime() const {
    const std::lock_guard lock(mutex);
    if (totalTimeList.size() < 2) {
        return std::nullopt;
    }
    return GetAverageTotalTime();
}

std::optional<double> ShareJob::CalculateAverageTotalTimeForSize(std::size_t size) {
    const std::lock_guard lock(mutex);
    if (totalTimeList.size() > size) {
        totalTimeList.pop_front();
    }
    if (totalTimeList.size() != size) {
        return std::nullopt;
    }
    return GetAverageTotalTime();
}

double ShareJob::GetAverageTotalTime() const {
    const double sum = std::accumulate(totalTimeList.begin(), totalTimeList.end(), 0.0);
    // An empty list divides 0.0 by 0.0: not-a-number, which only a window of 0 can reach.
    return sum / static_cast<double>(totalTimeList.size());
}

}  // namespace vantrokelui::model
