// The one object that owns every share job of the process, holds the functions the host lends
// the library, and writes the pipeline's state into the panel's properties. A lazy singleton
// (GetInstance): made on first use, destroyed when the application reaches state 9, after which
// fetching it throws kelcore's null pointer exception. The host and the view model reach it
// through the free functions of ShareModel.h.
//
// It holds the panel's properties only weakly and writes through their virtual setters, so a
// closed panel costs it nothing: an expired property makes a step a no-op, and a job outlives
// the panel.
//
// Threads: called on the main thread (view model, host) and on the cloud library's callback
// thread. Its observable order is that of a lock-free object, but its fields sit behind one
// small mutex so that the two threads never race. The mutex is never held while calling out:
// injected functions and property setters are copied or locked under it and called after it is
// released, so a host function or an observer may call back into the manager. The only other
// lock taken under it is a job's own (to read its identity), and a job never calls out.
//
//   ShareManager& manager = ShareManager::GetInstance();
//   manager.SetAssetDataMethods(getActive, getValue, setValue, clearValue);
//   manager.SetCurrentActiveSequenceAndProperties();
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include <boost/container_hash/hash.hpp>
#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index/sequenced_index.hpp>
#include <boost/multi_index_container.hpp>

#include <kelcore/string/String.h>
#include <vantrokelui/model/AssetFunctions.h>
#include <vantrokelui/model/EncoderPresetAttributes.h>
#include <vantrokelui/model/EncoderPresetData.h>
#include <vantrokelui/model/EncodingAttributes.h>
#include <vantrokelui/model/EncodingStatus.h>
#include <vantrokelui/model/ProcessingGuids.h>
#include <vantrokelui/model/ReviewAttributes.h>
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

class ShareManager {
public:
    /// The application state at which the singleton is destroyed for good.
    static constexpr int kDestroyAppState = 9;

    /// The process's manager, made on the first call. Throws kelcore's null pointer exception
    /// (naming ShareManager) once the application has reached kDestroyAppState. Any thread;
    /// two threads never both construct it.
    static ShareManager& GetInstance();

    /// An empty manager: no functions, no jobs, no properties. Use GetInstance; the public
    /// constructor is for the singleton's storage.
    ShareManager();
    /// Member-wise copies, taken under the source's lock. No share logic uses them.
    ShareManager(const ShareManager& other);
    ShareManager& operator=(const ShareManager& other);
    ~ShareManager();

    /// Copies in the host's four sequence functions, replacing earlier ones. Any thread.
    void SetAssetDataMethods(GetActiveSequenceFunction getActiveSequence,
                             GetSequenceValueFunction getSequenceValue,
                             SetSequenceValueFunction setSequenceValue,
                             ClearSequenceValueFunction clearSequenceValue);

    /// Copies in the host's render and cancel functions, replacing earlier ones. Any thread.
    void SetAssetProcessingMethod(AssetProcessingFunction assetProcessingMethod,
                                  CancelProcessingFunction cancelProcessingMethod);

    /// Copies in the folder-settings writer and the weak pointers to the panel's eleven
    /// properties; a second call replaces them all. Any thread.
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

    /// Makes a job and files it under `jobID`, last in walk order. First the oldest entry whose
    /// job belongs to the same project and sequence is dropped (at most one; its temporary file
    /// is left alone). A job already filed under `jobID` is replaced in its place. Any thread.
    void AddJobToMap(const kelcore::string::string& jobID, const ProcessingGuids& processingGuids,
                     const EncodingAttributes& encodingAttributes,
                     const ReviewAttributes& reviewAttributes,
                     const kelcore::string::string& outputFilePath);

    /// The job filed under `jobID` (compared as whole strings), or null. Any thread.
    std::shared_ptr<ShareJob> GetJobW(const kelcore::string::string& jobID) const;
    /// The job of the active sequence, or null. Any thread.
    std::shared_ptr<ShareJob> GetActiveSequenceJob() const;
    /// The id of the active sequence's job; empty when it has none. Any thread.
    kelcore::string::string GetActiveSequenceJobID() const;
    /// True while any job is filed, whatever its status. Any thread.
    bool HasActiveShareJobs() const;
    /// How many jobs are filed. Any thread.
    std::size_t GetJobCount() const;

    /// Publishes the host's presets, in its order, as new preset models, and selects the first
    /// (or nothing for an empty list). Does nothing when the presets property has gone. Any
    /// thread.
    void SetEncoderPresets(const std::vector<EncoderPresetData>& presets);

    /// The selected preset's file path; empty when the property has gone or nothing is
    /// selected. Any thread.
    kelcore::string::string GetSelectedEncoderPresetPath() const;

    /// Re-aims the manager at the sequence the host reports active: forgets the active job,
    /// then takes the first job of that sequence in walk order and publishes its status,
    /// progress, remaining time, speed and link through the properties still alive. With no
    /// such job the properties keep what they hold. Any thread.
    void SetCurrentActiveSequenceAndProperties();

    /// The active job's status, or EncodingStatus::None without one. Any thread.
    EncodingStatus GetShareJobEncodingStatus() const;

    /// Reads the preset stored with the sequence into `preset`. False when nothing is stored,
    /// when the text is not JSON or a member is not a string (both logged once; `preset` is
    /// left as it was), or when the text is JSON null. A missing member reads as empty text.
    /// A stored value that is JSON but not an object throws std::bad_any_cast. Any thread.
    bool GetEncoderPresetFromSequence(const ProcessingGuids& processingGuids,
                                      EncoderPresetAttributes& preset) const;

private:
    struct JobEntry {
        kelcore::string::string jobID;
        std::shared_ptr<ShareJob> job;
    };
    // Jobs are looked up by id and walked in the order they were filed: the first job of a
    // sequence wins when one is searched. A hash map alone loses that order, so the map keeps a
    // sequenced index beside the hashed one.
    using JobMap = boost::multi_index_container<
        JobEntry,
        boost::multi_index::indexed_by<
            boost::multi_index::sequenced<>,
            boost::multi_index::hashed_unique<
                boost::multi_index::member<JobEntry, kelcore::string::string, &JobEntry::jobID>,
                boost::hash<kelcore::string::string>>>>;

    // Locks the weak pointer `field` as it stands now.
    template <class Property>
    std::shared_ptr<Property> LockProperty(
        const std::weak_ptr<Property> ShareManager::*field) const {
        const std::lock_guard lock(mutex);
        return (this->*field).lock();
    }

    // Guards every field below; never held while an injected function or a property runs.
    mutable std::mutex mutex;
    AssetProcessingFunction assetProcessingMethod;
    GetActiveSequenceFunction getActiveSequence;
    GetSequenceValueFunction getSequenceValue;
    SetSequenceValueFunction setSequenceValue;
    ClearSequenceValueFunction clearSequenceValue;
    CancelProcessingFunction cancelProcessingMethod;
    kelcore::string::string activeSequenceJobID;
    JobMap jobMap;
    std::vector<kelcore::string::string> cancelJobQueue;  // cancelled while queued, oldest first
    std::function<void()> writeFolderSettingsCallback;
    std::weak_ptr<ActiveAssetNameNotifyingProperty> activeAssetNameProperty;
    std::weak_ptr<ReviewLinkURLNotifyingProperty> reviewLinkURLProperty;
    std::weak_ptr<CurrentViewIDNotifyingProperty> currentViewIDProperty;
    std::weak_ptr<EncodingStatusNotifyingProperty> encodingStatusProperty;
    std::weak_ptr<EncodingProgressNotifyingProperty> encodingProgressProperty;
    std::weak_ptr<ProcessingRemainingTimeNotifyingProperty> processingRemainingTimeProperty;
    std::weak_ptr<UploadingSpeedNotifyingProperty> uploadingSpeedProperty;
    std::weak_ptr<EncoderPresetsNotifyingProperty> encoderPresetsProperty;
    std::weak_ptr<SelectedEncoderPresetNotifyingProperty> selectedEncoderPresetProperty;
    std::weak_ptr<ActiveAssetDirtyNotifyingProperty> activeAssetDirtyProperty;
    std::weak_ptr<CreateNewLinkModeNotifyingProperty> createNewLinkModeProperty;
};

}  // namespace vantrokelui::model
