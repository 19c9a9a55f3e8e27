// The share pipeline's free functions: what the host and the panel's view model call. Each
// fetches the ShareManager singleton and forwards to its method of the same name, so each
// throws kelcore's null pointer exception once the application has reached the manager's
// destruction state. Any thread, as the methods they forward to.
//
//   model::SetAssetDataMethods(getActive, getValue, setValue, clearValue);
//   model::SetEncoderPresets(presets);
//   if (model::GetShareJobEncodingStatus() == EncodingStatus::Uploading) ...
#pragma once

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

}  // namespace vantrokelui::model
