#include <vantrokelui/model/ShareModel.h>

#include <utility>

#include <vantrokelui/model/ShareManager.h>

namespace vantrokelui::model {

void SetAssetDataMethods(GetActiveSequenceFunction getActiveSequence,
                         GetSequenceValueFunction getSequenceValue,
                         SetSequenceValueFunction setSequenceValue,
                         ClearSequenceValueFunction clearSequenceValue) {
    ShareManager::GetInstance().SetAssetDataMethods(
        std::move(getActiveSequence), std::move(getSequenceValue), std::move(setSequenceValue),
        std::move(clearSequenceValue));
}

void SetAssetProcessingMethod(AssetProcessingFunction assetProcessingMethod,
                              CancelProcessingFunction cancelProcessingMethod) {
    ShareManager::GetInstance().SetAssetProcessingMethod(std::move(assetProcessingMethod),
                                                         std::move(cancelProcessingMethod));
}

void SetNotifyingProperties(
    std::function<void()> writeFolderSettingsCallback,
    std::weak_ptr<ActiveAssetNameNotifyingProperty> activeAssetName,
    std::weak_ptr<ActiveAssetDirtyNotifyingProperty> activeAssetDirty,
    std::weak_ptr<ReviewLinkURLNotifyingProperty> reviewLinkURL,
    std::weak_ptr<CurrentViewIDNotifyingProperty> currentViewID,
    std::weak_ptr<EncodingStatusNotifyingProperty> encodingStatus,
    std::weak_ptr<EncodingProgressNotifyingProperty> encodingProgress,
    std::weak_ptr<ProcessingRemainingTimeNotifyingProperty> processingRemainingTime,
    std::weak_ptr<UploadingSpeedNotifyingProperty> uploadingSpeed,
    std::weak_ptr<EncoderPresetsNotifyingProperty> encoderPresets,
    std::weak_ptr<SelectedEncoderPresetNotifyingProperty> selectedEncoderPreset,
    std::weak_ptr<CreateNewLinkModeNotifyingProperty> createNewLinkMode) {
    ShareManager::GetInstance().SetNotifyingProperties(
        std::move(writeFolderSettingsCallback), std::move(activeAssetName),
        std::move(activeAssetDirty), std::move(reviewLinkURL), std::move(currentViewID),
        std::move(encodingStatus), std::move(encodingProgress), std::move(processingRemainingTime),
        std::move(uploadingSpeed), std::move(encoderPresets), std::move(selectedEncoderPreset),
        std::move(createNewLinkMode));
}

void SetEncoderPresets(const std::vector<EncoderPresetData>& presets) {
    ShareManager::GetInstance().SetEncoderPresets(presets);
}

void SetCurrentActiveSequenceAndProperties() {
    ShareManager::GetInstance().SetCurrentActiveSequenceAndProperties();
}

std::shared_ptr<ShareJob> GetActiveSequenceJob() {
    return ShareManager::GetInstance().GetActiveSequenceJob();
}

kelcore::string::string GetActiveSequenceJobID() {
    return ShareManager::GetInstance().GetActiveSequenceJobID();
}

EncodingStatus GetShareJobEncodingStatus() {
    return ShareManager::GetInstance().GetShareJobEncodingStatus();
}

bool GetEncoderPresetFromSequence(const ProcessingGuids& processingGuids,
                                  EncoderPresetAttributes& preset) {
    return ShareManager::GetInstance().GetEncoderPresetFromSequence(processingGuids, preset);
}

bool HasActiveShareJobs() {
    return ShareManager::GetInstance().HasActiveShareJobs();
}

void ProcessAssetForReview() {
    ShareManager::GetInstance().ProcessAssetForReview();
}

void StartUpload(const kelcore::string::string& jobID) {
    ShareManager::GetInstance().StartUpload(jobID);
}

void SetShareJobEncodingStatusForJob(EncodingStatus status, const kelcore::string::string& jobID) {
    ShareManager::GetInstance().SetShareJobEncodingStatusForJob(status, jobID);
}

void SetShareJobEncodingProgressForJob(double fraction, const kelcore::string::string& jobID) {
    ShareManager::GetInstance().SetShareJobEncodingProgressForJob(fraction, jobID);
}

void SetEncodingRemainingTimeForJob(const kelcore::string::string& jobID, double fraction) {
    ShareManager& manager = ShareManager::GetInstance();
    const double elapsed = manager.GetElapsedTime(jobID);
    // No sample before the clock has moved or the encoder has done anything: the estimate
    // divides by both.
    if (!(elapsed > 1e-6) || !(fraction > 0.0)) {
        return;
    }
    manager.SetEncodingRemainingTimeForJob(jobID, elapsed, fraction);
}

void ClearTotalTimeListForJob(const kelcore::string::string& jobID) {
    ShareManager::GetInstance().ClearTotalTimeListForJob(jobID);
}

std::vector<kelcore::string::string> GetCancelJobQueue() {
    return ShareManager::GetInstance().GetCancelJobQueue();
}

void RemoveJobInCancelJobQueueAt(std::size_t index) {
    ShareManager::GetInstance().RemoveJobInCancelJobQueueAt(index);
}

void RemoveCanceledJobInSarvex(const kelcore::string::string& jobID) {
    ShareManager::GetInstance().RemoveCanceledJobInSarvex(jobID);
}

void GetAndCleanupCanceledJobInSarvex(const kelcore::string::string& jobID) {
    ShareManager::GetInstance().GetAndCleanupCanceledJobInSarvex(jobID);
}

void CancelActiveProcessingJob() {
    ShareManager::GetInstance().CancelActiveProcessingJob();
}

}  // namespace vantrokelui::model
