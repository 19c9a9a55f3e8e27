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
#include <cstdint>
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

    /// Why a share ended early; chooses the failure toast's text.
    enum class ShareFailedReason : std::int32_t {
        Encoding = 0,    ///< the encoder reported EncodingStatus::EncodingFailed
        Upload = 1,      ///< the transfer failed
        ReviewLink = 2,  ///< the service refused a new review link
        Sharing = 3,     ///< the uploaded asset could not be added to the link
    };

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

    // --- submission -------------------------------------------------------------------------

    /// Starts a share of the active sequence from what the sequence stores: folder, version
    /// stack, link and preset. In new-link mode the stored upload, stack and link are removed
    /// first and the panel's folder choice written anew. Stops without a word when no folder is
    /// stored, or when a link must be made and no cloud project is stored. With a usable stored
    /// link the job is made at once; otherwise a review link named after the sequence is asked
    /// for, and the job is made when it arrives (a refusal shows screen 0 and a toast with Try
    /// again). Any thread.
    void ProcessAssetForReview();

    /// Makes the job and hands it to the host: registers the quit guard (once per process),
    /// names the output file in the user cache directory, deletes whatever stands there, files
    /// the job as the active one with status Queued, calls the host's render function, and
    /// puts the panel on the queued screen with status 1 and zero progress, time and speed.
    /// Any thread.
    void ProcessAssetForReview_Internal(const ProcessingGuids& processingGuids,
                                        const ReviewAttributes& reviewAttributes,
                                        const EncoderPresetAttributes& preset);

    /// The active sequence's name, made safe for a file name with hyphens, a dot and
    /// `fileExtension` as it stands; "TestProject.mp4" when the panel has gone. Any thread.
    kelcore::string::string GetOutputFileName(const kelcore::string::string& fileExtension) const;
    /// GetOutputFileName's file in the user cache directory, as a full path. Any thread.
    kelcore::string::string GetOutputFileFullPath(
        const kelcore::string::string& fileExtension) const;

    // --- progress and estimates ------------------------------------------------------------

    /// Stores the host's status in the job; EncodingStatus::EncodingFailed fails the share.
    /// Sets no property. An unknown id does nothing. Any thread.
    void SetShareJobEncodingStatusForJob(EncodingStatus status,
                                         const kelcore::string::string& jobID);
    /// Stores the encoder's fraction done in the job only. An unknown id does nothing. Any
    /// thread.
    void SetShareJobEncodingProgressForJob(double fraction, const kelcore::string::string& jobID);
    /// The encoding estimator: adds the sample elapsed / fraction to the job's history and, once
    /// the window of the last 8 samples is full, publishes their mean less `elapsed` plus 0.5 s
    /// (never below 0) to the remaining-time property, for any job. `fraction` must be above 0.
    /// Any thread.
    void SetEncodingRemainingTimeForJob(const kelcore::string::string& jobID, double elapsed,
                                        double fraction);
    /// The upload estimator: adds the sample and, from the second one on, stores the mean of the
    /// whole history less `elapsed` plus 0.5 s (never below 0) in the job, and publishes it when
    /// the job is the active one. `fraction` must be above 0. Any thread.
    void SetUploadingRemainingTimeForJob(const kelcore::string::string& jobID, double elapsed,
                                         double fraction);
    /// The mean speed since the job's start, in megabits per second: stored in the job and
    /// published when the job is the active one. `fraction` is not used. Any thread.
    void SetUploadingSpeedForJob(const kelcore::string::string& jobID, double elapsed,
                                 double fraction, double bytes);
    /// Seconds since the job's start time; the first call sets that time and answers 0. 0 for
    /// an unknown id. Any thread.
    double GetElapsedTime(const kelcore::string::string& jobID);
    /// Empties the job's total-time history. Any thread.
    void ClearTotalTimeListForJob(const kelcore::string::string& jobID);

    // --- upload and finalisation -----------------------------------------------------------

    /// Sends the job's finished file to the folder stored with its sequence, as a version of the
    /// job's version stack (made now when it has none), and keeps the transfer's id in the job.
    /// The end of the transfer stores the result with the sequence and finalises the share, or
    /// fails it. An unknown id does nothing. Any thread (the host's).
    void StartUpload(const kelcore::string::string& jobID);
    /// After a successful upload: adds the asset to the link when the job needs it (a refusal
    /// removes the stored link and stack and fails the share), then deletes the temporary
    /// file, clears the sequence's modified mark, shows the copy-link screen for the active
    /// sequence and drops a job whose status is UploadDone. Any thread.
    void FinalizeUpload(const kelcore::string::string& jobID);
    /// What StartUpload's progress callback runs for `job` (held by the callback, so it works
    /// after the job has left the map): stores the fraction sent/total in the job, publishes it
    /// for the active job and, once time has passed and something was sent, feeds the speed and
    /// the upload estimator. Any thread (the cloud library's).
    void HandleUploadProgress(const std::shared_ptr<ShareJob>& job,
                              const kelcore::string::string& jobID, std::uint64_t sent,
                              std::uint64_t total);
    /// What StartUpload's finished callback runs. Success: the usage event, the upload's result
    /// stored with the sequence (asset, link, link URL, version stack), status UploadDone, then
    /// FinalizeUpload. Failure: the usage event, ShareFailed, status UploadFailed and screen 4.
    /// Cancelled: the usage event, status UploadCancelled and screen 4, no toast. Any thread
    /// (the cloud library's).
    void HandleUploadFinished(const std::shared_ptr<ShareJob>& job,
                              const kelcore::string::string& jobID,
                              const ProcessingGuids& processingGuids, bool ok, bool cancelled,
                              const kelcore::utility::Guid& asset);
    /// Stores `asset` as the sequence's uploaded asset. Any thread.
    void SetUploadedAssetID(const kelcore::utility::Guid& project,
                            const kelcore::utility::Guid& sequence,
                            const kelcore::utility::Guid& asset);
    /// Marks the job's sequence as not modified since its share: through the panel when it is
    /// the active sequence, otherwise directly in the sequence. Any thread.
    void UpdateDirtyFlag(const std::shared_ptr<ShareJob>& job);

    // --- cancellation and failure ----------------------------------------------------------

    /// The user's Cancel, for the active job, by its status: a queued job waits in the cancel
    /// queue as CancelRequested; a rendering one is taken from the encoder and dropped; an
    /// uploading one is cancelled at the transfer manager and dropped (or marked UploadFailed
    /// when the cancel is refused). Whenever there is an active job the link text is emptied.
    /// Without one nothing happens. Sets no screen. Main thread.
    void CancelActiveProcessingJob();
    /// The ids of jobs cancelled while queued, oldest first (a copy). Any thread.
    std::vector<kelcore::string::string> GetCancelJobQueue() const;
    /// Removes the queue's entry at `index`; later entries move down one place. An index past
    /// the end leaves the queue as it is. Any thread.
    void RemoveJobInCancelJobQueueAt(std::size_t index);
    /// Has the host cancel the render of `jobID`, then cleans the job up. Any thread.
    void RemoveCanceledJobInSarvex(const kelcore::string::string& jobID);
    /// Cleans up `jobID` if it exists, for a host that cancelled the render itself. Any thread.
    void GetAndCleanupCanceledJobInSarvex(const kelcore::string::string& jobID);
    /// Deletes `outputFilePath`, drops `jobID` and forgets the active job, whichever job that
    /// was. Any thread.
    void CleanupCanceledJobInSarvex(const kelcore::string::string& jobID,
                                    const kelcore::string::string& outputFilePath);
    /// Deletes the file at `path` if something stands there; a file that cannot be deleted is
    /// ignored. Any thread.
    void DeleteTempFile(const kelcore::string::string& path);
    /// A share that failed: screen 0, its temporary file deleted, the job dropped (and no
    /// longer active), and the failure toast without Try again. An unknown id does nothing.
    /// Any thread.
    void ShareFailed(const kelcore::string::string& jobID, ShareFailedReason reason);
    /// Builds the failure text for `reason` around the file name of `path` (cut to 26 bytes and
    /// "..." when longer) and posts the toast to the main thread; returns at once. With
    /// `showTryAgain` the toast's button starts a new share of the then active sequence. Any
    /// thread.
    void ShowFailureToast(kelcore::string::string path, ShareFailedReason reason,
                          bool showTryAgain);

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

    // What the cloud library's callbacks hold instead of the manager: it tells them whether the
    // manager still lives, and makes the destructor wait for the callbacks running in it.
    struct Life;
    // Runs `fn(manager)` while the manager of `life` lives, else nothing.
    template <class Fn>
    static void WithManager(const std::shared_ptr<Life>& life, Fn&& fn);

    // The job filed under `jobID` leaves the map; the caller releases it after the lock.
    std::shared_ptr<ShareJob> EraseJob(const kelcore::string::string& jobID);
    bool IsActiveJob(const kelcore::string::string& jobID) const;
    // The share's last steps, once the asset is where it belongs (FinalizeUpload).
    void FinishShare(const std::shared_ptr<ShareJob>& job, const kelcore::string::string& jobID,
                     const kelcore::string::string& outputFilePath);

    std::shared_ptr<Life> life;

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
