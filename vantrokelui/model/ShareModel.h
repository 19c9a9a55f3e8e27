// The share pipeline's free functions: what the host and the panel's view model call. Each
// fetches the ShareManager singleton and forwards to its method of the same name, so each
// throws kelcore's null pointer exception once the application has reached the manager's
// destruction state. Any thread, as the methods they forward to.
//
//   model::SetAssetDataMethods(getActive, getValue, setValue, clearValue);
//   model::SetEncoderPresets(presets);
//   if (model::GetShareJobEncodingStatus() == EncodingStatus::Uploading) ...
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include <kelcore/string/String.h>
#include <vantrokelui/model/AssetFunctions.h>
#include <vantrokelui/model/EncoderPresetAttributes.h>
#include <vantrokelui/model/EncoderPresetData.h>
#include <vantrokelui/model/EncodingStatus.h>
#include <vantrokelui/model/ProcessingGuids.h>
#include <vantrokelui/model/ShareJob.h>
#include <vantrokelui/utility/ActiveAssetDirtyNotifyingProperty.h>
#include <vantrokelui/utility/ActiveAssetNameNotifyingProperty.h>
#include <vantrokelui/utility/CreateNewLinkModeNotifyingProperty.h>
#include <vantrokelui/utility/CurrentViewIDNotifyingProperty.h>
#include <vantrokelui/utility/EncoderPresetsNotifyingProperty.h>
#include <vantrokelui/utility/EncodingProgressNotifyingProperty.h>
#include <vantrokelui/utility/EncodingStatusNotifyingProperty.h>
#include <vantrokelui/utility/ProcessingRemainingTimeNotifyingProperty.h>
#include <vantrokelui/utility/ReviewLinkURLNotifyingProperty.h>
#include <vantrokelui/utility/SelectedEncoderPresetNotifyingProperty.h>
#include <vantrokelui/utility/UploadingSpeedNotifyingProperty.h>

namespace vantrokelui::model {

/// ShareManager::SetAssetDataMethods.
void SetAssetDataMethods(GetActiveSequenceFunction getActiveSequence,
                         GetSequenceValueFunction getSequenceValue,
                         SetSequenceValueFunction setSequenceValue,
                         ClearSequenceValueFunction clearSequenceValue);

/// ShareManager::SetAssetProcessingMethod.
void SetAssetProcessingMethod(AssetProcessingFunction assetProcessingMethod,
                              CancelProcessingFunction cancelProcessingMethod);

/// ShareManager::SetNotifyingProperties.
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
    std::weak_ptr<CreateNewLinkModeNotifyingProperty> createNewLinkMode);

/// ShareManager::SetEncoderPresets.
void SetEncoderPresets(const std::vector<EncoderPresetData>& presets);

/// ShareManager::SetCurrentActiveSequenceAndProperties.
void SetCurrentActiveSequenceAndProperties();

/// ShareManager::GetActiveSequenceJob: the active sequence's job, or null.
std::shared_ptr<ShareJob> GetActiveSequenceJob();

/// ShareManager::GetActiveSequenceJobID: empty when the active sequence has no job.
kelcore::string::string GetActiveSequenceJobID();

/// ShareManager::GetShareJobEncodingStatus: EncodingStatus::None without an active job.
EncodingStatus GetShareJobEncodingStatus();

/// ShareManager::GetEncoderPresetFromSequence.
bool GetEncoderPresetFromSequence(const ProcessingGuids& processingGuids,
                                  EncoderPresetAttributes& preset);

/// ShareManager::HasActiveShareJobs: true while any job exists; asked when the user quits.
bool HasActiveShareJobs();

/// ShareManager::ProcessAssetForReview: starts a share of the active sequence.
void ProcessAssetForReview();

/// ShareManager::StartUpload: the host's file for `jobID` is complete.
void StartUpload(const kelcore::string::string& jobID);

/// ShareManager::SetShareJobEncodingStatusForJob: the host's status report.
void SetShareJobEncodingStatusForJob(EncodingStatus status, const kelcore::string::string& jobID);

/// ShareManager::SetShareJobEncodingProgressForJob: the host's progress report.
void SetShareJobEncodingProgressForJob(double fraction, const kelcore::string::string& jobID);

/// The encoder's time-left report: measures the time elapsed since the job's start and, when
/// both that and `fraction` are above zero, feeds ShareManager::SetEncodingRemainingTimeForJob.
/// The first report of a job only starts its clock.
void SetEncodingRemainingTimeForJob(const kelcore::string::string& jobID, double fraction);

/// ShareManager::ClearTotalTimeListForJob.
void ClearTotalTimeListForJob(const kelcore::string::string& jobID);

/// ShareManager::GetCancelJobQueue.
std::vector<kelcore::string::string> GetCancelJobQueue();

/// ShareManager::RemoveJobInCancelJobQueueAt.
void RemoveJobInCancelJobQueueAt(std::size_t index);

/// ShareManager::RemoveCanceledJobInSarvex.
void RemoveCanceledJobInSarvex(const kelcore::string::string& jobID);

/// ShareManager::GetAndCleanupCanceledJobInSarvex.
void GetAndCleanupCanceledJobInSarvex(const kelcore::string::string& jobID);

/// ShareManager::CancelActiveProcessingJob: the panel's Cancel. Main thread.
void CancelActiveProcessingJob();

}  // namespace vantrokelui::model
