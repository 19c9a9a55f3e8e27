#include <vantrokelui/model/ShareManager.h>

#include <any>
#include <string>
#include <utility>

#include <kelcore/allocator/STLAllocator.h>
#include <kelcore/logging/Logging.h>
#include <kelcore/serialization/JSON.h>
#include <kelcore/utility/LazySingleton.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/SequenceSettings.h>

namespace vantrokelui::model {

using kelcore::string::string;
using kelcore::utility::Guid;

namespace {

constexpr std::string_view kGetEncoderPresetFromSequenceName =
    "vantrokelui::model::ShareManager::GetEncoderPresetFromSequence";

}  // namespace

ShareManager& ShareManager::GetInstance() {
    static const auto sInstance =
        kelcore::utility::detail::CreateLazySingleton<ShareManager>(kDestroyAppState);
    return sInstance.Get();
}

ShareManager::ShareManager() = default;

ShareManager::ShareManager(const ShareManager& other) {
    const std::lock_guard lock(other.mutex);
    assetProcessingMethod = other.assetProcessingMethod;
    getActiveSequence = other.getActiveSequence;
    getSequenceValue = other.getSequenceValue;
    setSequenceValue = other.setSequenceValue;
    clearSequenceValue = other.clearSequenceValue;
    cancelProcessingMethod = other.cancelProcessingMethod;
    activeSequenceJobID = other.activeSequenceJobID;
    jobMap = other.jobMap;
    cancelJobQueue = other.cancelJobQueue;
    writeFolderSettingsCallback = other.writeFolderSettingsCallback;
    activeAssetNameProperty = other.activeAssetNameProperty;
    reviewLinkURLProperty = other.reviewLinkURLProperty;
    currentViewIDProperty = other.currentViewIDProperty;
    encodingStatusProperty = other.encodingStatusProperty;
    encodingProgressProperty = other.encodingProgressProperty;
    processingRemainingTimeProperty = other.processingRemainingTimeProperty;
    uploadingSpeedProperty = other.uploadingSpeedProperty;
    encoderPresetsProperty = other.encoderPresetsProperty;
    selectedEncoderPresetProperty = other.selectedEncoderPresetProperty;
    activeAssetDirtyProperty = other.activeAssetDirtyProperty;
    createNewLinkModeProperty = other.createNewLinkModeProperty;
}

ShareManager& ShareManager::operator=(const ShareManager& other) {
    if (this == &other) {
        return *this;
    }
    ShareManager copy(other);
    // The replaced functions and jobs are released with `copy`, after the lock.
    const std::lock_guard lock(mutex);
    std::swap(assetProcessingMethod, copy.assetProcessingMethod);
    std::swap(getActiveSequence, copy.getActiveSequence);
    std::swap(getSequenceValue, copy.getSequenceValue);
    std::swap(setSequenceValue, copy.setSequenceValue);
    std::swap(clearSequenceValue, copy.clearSequenceValue);
    std::swap(cancelProcessingMethod, copy.cancelProcessingMethod);
    std::swap(activeSequenceJobID, copy.activeSequenceJobID);
    jobMap.swap(copy.jobMap);
    std::swap(cancelJobQueue, copy.cancelJobQueue);
    std::swap(writeFolderSettingsCallback, copy.writeFolderSettingsCallback);
    std::swap(activeAssetNameProperty, copy.activeAssetNameProperty);
    std::swap(reviewLinkURLProperty, copy.reviewLinkURLProperty);
    std::swap(currentViewIDProperty, copy.currentViewIDProperty);
    std::swap(encodingStatusProperty, copy.encodingStatusProperty);
    std::swap(encodingProgressProperty, copy.encodingProgressProperty);
    std::swap(processingRemainingTimeProperty, copy.processingRemainingTimeProperty);
    std::swap(uploadingSpeedProperty, copy.uploadingSpeedProperty);
    std::swap(encoderPresetsProperty, copy.encoderPresetsProperty);
    std::swap(selectedEncoderPresetProperty, copy.selectedEncoderPresetProperty);
    std::swap(activeAssetDirtyProperty, copy.activeAssetDirtyProperty);
    std::swap(createNewLinkModeProperty, copy.createNewLinkModeProperty);
    return *this;
}

ShareManager::~ShareManager() = default;

void ShareManager::SetAssetDataMethods(GetActiveSequenceFunction newGetActiveSequence,
                                       GetSequenceValueFunction newGetSequenceValue,
                                       SetSequenceValueFunction newSetSequenceValue,
                                       ClearSequenceValueFunction newClearSequenceValue) {
    // Swapped in under the lock, so the old functions die after it is released.
    const std::lock_guard lock(mutex);
    std::swap(getActiveSequence, newGetActiveSequence);
    std::swap(getSequenceValue, newGetSequenceValue);
    std::swap(setSequenceValue, newSetSequenceValue);
    std::swap(clearSequenceValue, newClearSequenceValue);
}

void ShareManager::SetAssetProcessingMethod(AssetProcessingFunction newAssetProcessingMethod,
                                            CancelProcessingFunction newCancelProcessingMethod) {
    const std::lock_guard lock(mutex);
    std::swap(assetProcessingMethod, newAssetProcessingMethod);
    std::swap(cancelProcessingMethod, newCancelProcessingMethod);
}

void ShareManager::SetNotifyingProperties(
    std::function<void()> newWriteFolderSettingsCallback,
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
    const std::lock_guard lock(mutex);
    std::swap(writeFolderSettingsCallback, newWriteFolderSettingsCallback);
    activeAssetNameProperty = std::move(activeAssetName);
    activeAssetDirtyProperty = std::move(activeAssetDirty);
    reviewLinkURLProperty = std::move(reviewLinkURL);
    currentViewIDProperty = std::move(currentViewID);
    encodingStatusProperty = std::move(encodingStatus);
    encodingProgressProperty = std::move(encodingProgress);
    processingRemainingTimeProperty = std::move(processingRemainingTime);
    uploadingSpeedProperty = std::move(uploadingSpeed);
    encoderPresetsProperty = std::move(encoderPresets);
    selectedEncoderPresetProperty = std::move(selectedEncoderPreset);
    createNewLinkModeProperty = std::move(createNewLinkMode);
}

void ShareManager::AddJobToMap(const string& jobID, const ProcessingGuids& processingGuids,
                               const EncodingAttributes& encodingAttributes,
                               const ReviewAttributes& reviewAttributes,
                               const string& outputFilePath) {
    auto job = std::allocate_shared<ShareJob>(kelcore::allocator::STLAllocator<ShareJob>(),
                                              processingGuids, encodingAttributes, reviewAttributes,
                                              outputFilePath);
    std::shared_ptr<ShareJob> dropped;  // released after the lock
    std::shared_ptr<ShareJob> replaced;
    const std::lock_guard lock(mutex);
    auto& inOrder = jobMap.get<0>();
    for (auto entry = inOrder.begin(); entry != inOrder.end(); ++entry) {
        if (entry->job->GetProcessingGuids() == processingGuids) {
            dropped = entry->job;
            inOrder.erase(entry);
            break;
        }
    }
    auto& byID = jobMap.get<1>();
    if (const auto existing = byID.find(jobID); existing != byID.end()) {
        replaced = existing->job;
        byID.replace(existing, JobEntry{jobID, std::move(job)});
    } else {
        inOrder.push_back(JobEntry{jobID, std::move(job)});
    }
}

std::shared_ptr<ShareJob> ShareManager::GetJobW(const string& jobID) const {
    const std::lock_guard lock(mutex);
    const auto& byID = jobMap.get<1>();
    const auto found = byID.find(jobID);
    return found != byID.end() ? found->job : nullptr;
}

std::shared_ptr<ShareJob> ShareManager::GetActiveSequenceJob() const {
    const std::lock_guard lock(mutex);
    const auto& byID = jobMap.get<1>();
    const auto found = byID.find(activeSequenceJobID);
    return found != byID.end() ? found->job : nullptr;
}

string ShareManager::GetActiveSequenceJobID() const {
    const std::lock_guard lock(mutex);
    return activeSequenceJobID;
}

bool ShareManager::HasActiveShareJobs() const {
    const std::lock_guard lock(mutex);
    return !jobMap.empty();
}

std::size_t ShareManager::GetJobCount() const {
    const std::lock_guard lock(mutex);
    return jobMap.size();
}

void ShareManager::SetEncoderPresets(const std::vector<EncoderPresetData>& presets) {
    const auto presetsProperty = LockProperty(&ShareManager::encoderPresetsProperty);
    if (!presetsProperty) {
        return;
    }
    utility::SharedPtrVector<EncoderPresetModel> models;
    models.reserve(presets.size());
    for (const EncoderPresetData& preset : presets) {
        std::shared_ptr<EncoderPresetModel> model = EncoderPresetModel::Create();
        model->SetPresetName(preset.presetName);
        model->SetPresetPath(preset.presetPath);
        model->SetExtension(preset.fileExtension);
        models.push_back(std::move(model));
    }
    presetsProperty->SetEncoderPresets(models);
    if (const auto selected = LockProperty(&ShareManager::selectedEncoderPresetProperty)) {
        selected->SetSelectedEncoderPreset(models.empty() ? nullptr : models.front());
    }
}

string ShareManager::GetSelectedEncoderPresetPath() const {
    const auto selected = LockProperty(&ShareManager::selectedEncoderPresetProperty);
    if (!selected) {
        return {};
    }
    const std::shared_ptr<EncoderPresetModel> preset = selected->GetSelectedEncoderPreset();
    return preset ? preset->GetPresetPath() : string();
}

void ShareManager::SetCurrentActiveSequenceAndProperties() {
    GetActiveSequenceFunction getActive;
    {
        const std::lock_guard lock(mutex);
        getActive = getActiveSequence;
    }
    ProcessingGuids active;
    getActive(active.projectGuid, active.sequenceGuid);  // its answer is not looked at

    std::shared_ptr<ShareJob> job;
    {
        const std::lock_guard lock(mutex);
        activeSequenceJobID.clear();
        for (const JobEntry& entry : jobMap.get<0>()) {
            if (entry.job->GetProcessingGuids() == active) {
                activeSequenceJobID = entry.jobID;
                job = entry.job;
                break;
            }
        }
    }
    if (!job) {
        return;
    }
    if (const auto property = LockProperty(&ShareManager::encodingStatusProperty)) {
        property->SetEncodingStatus(job->GetEncodingStatus());
    }
    if (const auto property = LockProperty(&ShareManager::encodingProgressProperty)) {
        property->SetEncodingProgress(job->GetEncodingProgress());
    }
    if (const auto property = LockProperty(&ShareManager::processingRemainingTimeProperty)) {
        property->SetProcessingRemainingTime(job->GetProcessingRemainingTime());
    }
    if (const auto property = LockProperty(&ShareManager::uploadingSpeedProperty)) {
        property->SetUploadingSpeed(job->GetUploadingSpeed());
    }
    if (const auto property = LockProperty(&ShareManager::reviewLinkURLProperty)) {
        property->SetReviewLinkURL(job->GetReviewLinkURL());
    }
}

EncodingStatus ShareManager::GetShareJobEncodingStatus() const {
    const std::shared_ptr<ShareJob> job = GetActiveSequenceJob();
    return job ? job->GetEncodingStatus() : EncodingStatus::None;
}

bool ShareManager::GetEncoderPresetFromSequence(const ProcessingGuids& processingGuids,
                                                EncoderPresetAttributes& preset) const {
    GetSequenceValueFunction getValue;
    {
        const std::lock_guard lock(mutex);
        getValue = getSequenceValue;
    }
    string stored;
    if (!GetSequenceString(getValue, processingGuids.projectGuid, processingGuids.sequenceGuid,
                           kSelectedEncoderPresetKey, stored)) {
        return false;
    }
    namespace json = kelcore::serialization;
    try {
        const std::any document = json::JSONParse(kelcore::string::UTF16toStdString(stored));
        if (!document.has_value()) {
            return false;
        }
        // Anything but an object throws std::bad_any_cast here, and it is meant to escape.
        const std::string name = json::GetVariantInObject<std::string>(document, "preset_name");
        const std::string path = json::GetVariantInObject<std::string>(document, "preset_path");
        const std::string extension =
            json::GetVariantInObject<std::string>(document, "file_extension");
        preset.presetName = kelcore::string::StdToUTF16String(name);
        preset.presetPath = kelcore::string::StdToUTF16String(path);
        preset.fileExtension = kelcore::string::StdToUTF16String(extension);
        return true;
    } catch (const json::parse_exception& error) {
        // A bad stored value is never fatal: the caller falls back to the panel's selection.
        kelcore::logging::LogException(kGetEncoderPresetFromSequenceName, error);
        return false;
    }
}

}  // namespace vantrokelui::model
