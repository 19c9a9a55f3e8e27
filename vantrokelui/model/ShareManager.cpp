#include <vantrokelui/model/ShareManager.h>

#include <algorithm>
#include <any>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include <kelcore/allocator/STLAllocator.h>
#include <kelcore/appstatemanager/PrepareToQuitService.h>
#include <kelcore/appstatemanager/PrepareToQuitWorkItem.h>
#include <kelcore/config/ErrorHandling.h>
#include <kelcore/config/Localizer.h>
#include <kelcore/filesupport/CommonDirs.h>
#include <kelcore/filesupport/File.h>
#include <kelcore/filesupport/file_delete_exception.h>
#include <kelcore/logging/Logging.h>
#include <kelcore/serialization/JSON.h>
#include <kelcore/threads/MainThread.h>
#include <kelcore/utility/FileUtils.h>
#include <kelcore/utility/LazySingleton.h>
#include <kelui/dialogs/messagebox/Messagebox.h>
#include <kelui/dialogs/messagebox/UI_MessageBox.h>
#include <kelui/sharedui/UI_ToastManager.h>
#include <kelui/ui/MainTopLevelWindow.h>
#include <kelui/utility/OS_Time.h>
#include <kelworkspace/workspace/WorkspaceUtils.h>
#include <vantrokelui/model/CloudTransferCalls.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/utility/SDMLogging.h>

namespace vantrokelui::model {

using kelcore::string::string;
using kelcore::utility::Guid;

namespace {

using kelui::dialogs::messagebox::UI_MessageBox;

constexpr std::string_view kGetEncoderPresetFromSequenceName =
    "vantrokelui::model::ShareManager::GetEncoderPresetFromSequence";

// Failure toasts, by ShareManager::ShareFailedReason.
constexpr std::string_view kEncodingFailedText =
    "$$$/Corvane/vantrokelui/model/ShareManager/Toast/EncodingFailed=Encoding \"@0\" failed. See "
    "Sarvex for details.";
constexpr std::string_view kUploadFailedText =
    "$$$/Corvane/vantrokelui/model/ShareManager/Toast/UploadFailed=Uploading \"@0\" to Vantro "
    "failed.";
constexpr std::string_view kUnableToCreateReviewLinkText =
    "$$$/Corvane/vantrokelui/model/ShareManager/Toast/UnableToCreateReviewLink=Unable to create "
    "share for review link.";
constexpr std::string_view kSharingFailedText =
    "$$$/Corvane/vantrokelui/model/ShareManager/Toast/SharingFailed=Sharing \"@0\" failed. Please "
    "try again.";
constexpr std::string_view kTryAgainText =
    "$$$/Corvane/vantrokelui/model/ShareManager/Toast/TryAgain=Try again";

// The quit guard's texts.
constexpr std::string_view kQuitWaitingText =
    "$$$/Corvane/vantrokelui/sharedui/WarnOnQuitDialog/WaitingMessage=Waiting for Vantro tasks.";
constexpr std::string_view kQuitTitleText =
    "$$$/Corvane/vantrokelui/sharedui/WarnOnQuitDialog/DialogTitle=Still rendering and uploading";
constexpr std::string_view kQuitMessageText =
    "$$$/Corvane/vantrokelui/sharedui/WarnOnQuitDialog/DialogMessage=Your sequence is still "
    "rendering and uploading to Vantro. Closing Corvane now will cancel this process and newly "
    "created links will be empty.";
constexpr std::string_view kQuitCloseNowText =
    "$$$/Corvane/vantrokelui/sharedui/WarnOnQuitDialog/CloneNowButton=Close now";
constexpr std::string_view kQuitCloseLaterText =
    "$$$/Corvane/vantrokelui/sharedui/WarnOnQuitDialog/CloseLaterButton=Close later";

// The name the output file takes when the panel (and with it the sequence's name) has gone.
constexpr kelcore::string::string_view kFallbackOutputFileName = u"TestProject.mp4";
// A failure toast shows at most this many bytes of the file's name.
constexpr std::size_t kToastFileNameBytes = 26;
// What the quit dialog answers without asking: anything but the "Close later" button.
constexpr auto kQuitGoesOn = static_cast<UI_MessageBox::Button>(1);

// Asks the user whether to quit while shares run. Answers without a dialog, letting the quit go
// on, off the main thread or without a main window and its workspace.
UI_MessageBox::Button AskWhetherToQuitWhileSharing() {
    const auto& localizer = kelcore::config::Localizer::Get();
    const std::string title = localizer.GetUTF8String(kQuitTitleText);
    const std::string message = localizer.GetUTF8String(kQuitMessageText);
    const std::string closeNow = localizer.GetUTF8String(kQuitCloseNowText);
    const std::string closeLater = localizer.GetUTF8String(kQuitCloseLaterText);
    if (!kelcore::threads::CurrentThreadIsMainThread()) {
        return kQuitGoesOn;
    }
    const auto window = kelworkspace::workspace::WorkspaceUtils::FindMainTopLevelWindow();
    if (!window) {
        return kQuitGoesOn;
    }
    const auto workspace = window->GetWorkspace();
    if (!workspace) {
        return kQuitGoesOn;
    }
    return kelui::dialogs::messagebox::Messagebox(
        workspace->GetDrawingSupplier(), title, message, window, closeNow, closeLater, "", "", "",
        nullptr, UI_MessageBox::Button2, UI_MessageBox::Icon::Warning, nullptr, 0.0f, 0.0f);
}

// Asked when the user quits: while any share job exists, the user may keep the application
// running until the shares are done. One item per quit attempt; the service calls it on the main
// thread.
class CheckVantroShareWorkItem final : public kelcore::appstatemanager::PrepareToQuitWorkItem {
public:
    using PrepareToQuitWorkItem::PrepareToQuitWorkItem;

    int PrepareToQuit() override {
        int result = 1;
        if (HasActiveShareJobs() && AskWhetherToQuitWhileSharing() == UI_MessageBox::Button2) {
            DoPreventAppToTerminate();
            result = 0;
        }
        MarkDone();
        return result;
    }
};

// The guard costs nothing until the process's first share, and is registered only once.
void RegisterQuitGuardOnce() {
    static std::once_flag sRegistered;
    std::call_once(sRegistered, [] {
        kelcore::appstatemanager::RegisterPrepareToQuitWork(
            []() -> std::shared_ptr<kelcore::appstatemanager::PrepareToQuitWorkItem> {
                return std::allocate_shared<CheckVantroShareWorkItem>(
                    kelcore::allocator::STLAllocator<CheckVantroShareWorkItem>(),
                    kelcore::config::Localizer::Get().GetUTF8String(kQuitWaitingText));
            });
    });
}

std::string_view FailureText(ShareManager::ShareFailedReason reason) {
    switch (reason) {
        case ShareManager::ShareFailedReason::Encoding:
            return kEncodingFailedText;
        case ShareManager::ShareFailedReason::Upload:
            return kUploadFailedText;
        case ShareManager::ShareFailedReason::ReviewLink:
            return kUnableToCreateReviewLinkText;
        case ShareManager::ShareFailedReason::Sharing:
            return kSharingFailedText;
    }
    return {};
}

// Shows one failure toast over the main window. Main thread.
void DisplayFailureToast(const std::string& message, bool showTryAgain) {
    const auto toasts = kelui::sharedui::UI_ToastManager::GetDefaultInstance();
    const auto window = kelui::ui::GetMainTopLevelWindow();
    const std::string label = showTryAgain
                                  ? kelcore::config::Localizer::Get().GetUTF8String(kTryAgainText)
                                  : std::string();
    toasts->DisplayToastMessage(
        window, message, label, [] { ShareManager::GetInstance().ProcessAssetForReview(); }, [] {},
        kelui::sharedui::ToastType::Error, 0.0, kelui::sharedui::kToastManager_DefaultPriority,
        kelui::sharedui::ToastLineType::SingleLine);
}

}  // namespace

struct ShareManager::Life {
    std::mutex mutex;
    std::condition_variable idle;
    ShareManager* manager = nullptr;  // null once the manager is being destroyed
    int running = 0;                  // callbacks inside the manager now
};

template <class Fn>
void ShareManager::WithManager(const std::shared_ptr<Life>& life, Fn&& fn) {
    ShareManager* manager = nullptr;
    {
        const std::lock_guard lock(life->mutex);
        if (life->manager == nullptr) {
            return;
        }
        manager = life->manager;
        ++life->running;
    }
    struct Leave {
        Life& life;
        ~Leave() {
            const std::lock_guard lock(life.mutex);
            if (--life.running == 0) {
                life.idle.notify_all();
            }
        }
    } leave{*life};
    fn(*manager);
}

ShareManager& ShareManager::GetInstance() {
    static const auto sInstance =
        kelcore::utility::detail::CreateLazySingleton<ShareManager>(kDestroyAppState);
    return sInstance.Get();
}

ShareManager::ShareManager() : life(std::make_shared<Life>()) {
    life->manager = this;
}

ShareManager::ShareManager(const ShareManager& other) : life(std::make_shared<Life>()) {
    life->manager = this;
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

ShareManager::~ShareManager() {
    // Callbacks that arrive from now on do nothing; those already inside are waited for.
    std::unique_lock lock(life->mutex);
    life->manager = nullptr;
    life->idle.wait(lock, [this] { return life->running == 0; });
}

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

// --- helpers ---------------------------------------------------------------------------------

std::shared_ptr<ShareJob> ShareManager::EraseJob(const string& jobID) {
    const std::lock_guard lock(mutex);
    auto& byID = jobMap.get<1>();
    const auto found = byID.find(jobID);
    if (found == byID.end()) {
        return nullptr;
    }
    std::shared_ptr<ShareJob> job = found->job;
    byID.erase(found);
    return job;
}

bool ShareManager::IsActiveJob(const string& jobID) const {
    const std::lock_guard lock(mutex);
    return jobID == activeSequenceJobID;
}

// --- submission ------------------------------------------------------------------------------

void ShareManager::ProcessAssetForReview() {
    GetActiveSequenceFunction getActive;
    GetSequenceValueFunction getValue;
    ClearSequenceValueFunction clearValue;
    std::function<void()> writeFolderSettings;
    {
        const std::lock_guard lock(mutex);
        getActive = getActiveSequence;
        getValue = getSequenceValue;
        clearValue = clearSequenceValue;
        writeFolderSettings = writeFolderSettingsCallback;
    }
    ProcessingGuids guids;
    getActive(guids.projectGuid, guids.sequenceGuid);  // its answer is not looked at
    const Guid& project = guids.projectGuid;
    const Guid& sequence = guids.sequenceGuid;

    if (const auto mode = LockProperty(&ShareManager::createNewLinkModeProperty);
        mode && mode->GetCreateNewLinkMode()) {
        // A new link starts a new version stack: forget everything of the last share, then put
        // the panel's folder choice back (the view model ends the mode itself).
        RemoveSequenceValue(clearValue, project, sequence, kUploadedAssetGuidKey);
        RemoveSequenceValue(clearValue, project, sequence, kVersionStackGuidKey);
        RemoveSequenceValue(clearValue, project, sequence, kReviewLinkGuidKey);
        RemoveSequenceValue(clearValue, project, sequence, kReviewLinkURLKey);
        // The panel's writer is bound weakly; an empty one has nothing to write either.
        if (writeFolderSettings) {
            writeFolderSettings();
        }
    }

    Guid folder;
    if (!GetSequenceGuid(getValue, project, sequence, kUploadFolderGuidKey, folder)) {
        return;
    }
    Guid versionStack;
    const bool addToLink =
        !GetSequenceGuid(getValue, project, sequence, kVersionStackGuidKey, versionStack);
    Guid link;
    string linkURL;
    const bool hasLinkGuid = GetSequenceGuid(getValue, project, sequence, kReviewLinkGuidKey, link);
    const bool hasLinkURL =
        GetSequenceString(getValue, project, sequence, kReviewLinkURLKey, linkURL);

    EncoderPresetAttributes preset;
    if (!GetEncoderPresetFromSequence(guids, preset)) {
        if (const auto selected = LockProperty(&ShareManager::selectedEncoderPresetProperty)) {
            const std::shared_ptr<EncoderPresetModel> model = selected->GetSelectedEncoderPreset();
            if (!model) {
                // The panel never starts a share without a preset; the share must not guess one.
                kelcore::config::ThrowError(
                    "A share was started with no stored preset and none selected.");
            }
            preset.presetName = model->GetPresetName();
            preset.presetPath = model->GetPresetPath();
            preset.fileExtension = model->GetExtension();
        }
    }

    if (hasLinkGuid && hasLinkURL && !link.IsNil() && !linkURL.empty()) {
        ProcessAssetForReview_Internal(
            guids, ReviewAttributes{folder, addToLink, versionStack, link, linkURL}, preset);
        return;
    }

    Guid cloudProject;
    if (!GetSequenceGuid(getValue, project, sequence, kUploadFolderParentProjGuidKey,
                         cloudProject)) {
        return;
    }
    // The link is named after the sequence, extension and all.
    const string linkName = GetOutputFileName(preset.fileExtension);
    // Without a cloud client no answer ever comes, and the share simply does not start.
    CreateReviewLink(
        cloudProject, linkName,
        [life = life, guids, folder, addToLink, versionStack, preset](bool ok, const Guid& newLink,
                                                                      const string& newLinkURL) {
            WithManager(life, [&](ShareManager& manager) {
                if (!ok) {
                    if (const auto view =
                            manager.LockProperty(&ShareManager::currentViewIDProperty)) {
                        view->SetCurrentViewID(ShareForReviewViewID::None);
                    }
                    manager.ShowFailureToast(string(), ShareFailedReason::ReviewLink, true);
                    return;
                }
                // The link shows before anything is rendered; it is stored with the sequence
                // only once the upload has succeeded.
                if (const auto url = manager.LockProperty(&ShareManager::reviewLinkURLProperty)) {
                    url->SetReviewLinkURL(newLinkURL);
                }
                manager.ProcessAssetForReview_Internal(
                    guids, ReviewAttributes{folder, addToLink, versionStack, newLink, newLinkURL},
                    preset);
            });
        });
}

void ShareManager::ProcessAssetForReview_Internal(const ProcessingGuids& processingGuids,
                                                  const ReviewAttributes& reviewAttributes,
                                                  const EncoderPresetAttributes& preset) {
    RegisterQuitGuardOnce();
    const string outputFilePath = GetOutputFileFullPath(preset.fileExtension);
    const string jobID = Guid::CreateUnique().AsString();
    AssetProcessingFunction process;
    {
        const std::lock_guard lock(mutex);
        activeSequenceJobID = jobID;
        process = assetProcessingMethod;
    }
    // A leftover of an earlier share must never be uploaded as this one.
    DeleteTempFile(outputFilePath);
    AddJobToMap(jobID, processingGuids, EncodingAttributes{EncodingStatus::Queued, 0.0},
                reviewAttributes, outputFilePath);
    process(outputFilePath, jobID, preset.presetPath);

    if (const auto view = LockProperty(&ShareManager::currentViewIDProperty)) {
        view->SetCurrentViewID(ShareForReviewViewID::EncodingQueued);
    }
    if (const auto status = LockProperty(&ShareManager::encodingStatusProperty)) {
        status->SetEncodingStatus(EncodingStatus::Queued);
    }
    if (const auto progress = LockProperty(&ShareManager::encodingProgressProperty)) {
        progress->SetEncodingProgress(0.0);
    }
    if (const auto remaining = LockProperty(&ShareManager::processingRemainingTimeProperty)) {
        remaining->SetProcessingRemainingTime(0.0);
    }
    if (const auto speed = LockProperty(&ShareManager::uploadingSpeedProperty)) {
        speed->SetUploadingSpeed(0.0);
    }
}

string ShareManager::GetOutputFileName(const string& fileExtension) const {
    const auto name = LockProperty(&ShareManager::activeAssetNameProperty);
    if (!name) {
        return string(kFallbackOutputFileName);
    }
    string fileName = kelcore::utility::FileUtils::ReplaceIllegalFileNameCharacters(
        name->GetActiveAssetName(), u'-');
    fileName += u'.';
    fileName += fileExtension;
    return fileName;
}

string ShareManager::GetOutputFileFullPath(const string& fileExtension) const {
    return kelcore::filesupport::File(kelcore::filesupport::commondirs::UserCacheDir(),
                                      GetOutputFileName(fileExtension))
        .FullPath();
}

// --- progress and estimates ------------------------------------------------------------------

void ShareManager::SetShareJobEncodingStatusForJob(EncodingStatus status, const string& jobID) {
    const std::shared_ptr<ShareJob> job = GetJobW(jobID);
    if (!job) {
        return;
    }
    job->SetEncodingStatus(status);
    if (status == EncodingStatus::EncodingFailed) {
        ShareFailed(jobID, ShareFailedReason::Encoding);
    }
}

void ShareManager::SetShareJobEncodingProgressForJob(double fraction, const string& jobID) {
    if (const std::shared_ptr<ShareJob> job = GetJobW(jobID)) {
        job->SetEncodingProgress(fraction);
    }
}

double ShareManager::GetElapsedTime(const string& jobID) {
    const std::shared_ptr<ShareJob> job = GetJobW(jobID);
    if (!job) {
        return 0.0;
    }
    const kelui::utility::OS_Time now = kelui::utility::CurrentTime();
    std::optional<kelui::utility::OS_Time> start = job->GetEncodeStartTime();
    if (!start) {
        job->SetEncodeStartTime(now);
        start = now;
    }
    return now - *start;
}

void ShareManager::SetEncodingRemainingTimeForJob(const string& jobID, double elapsed,
                                                  double fraction) {
    const std::shared_ptr<ShareJob> job = GetJobW(jobID);
    if (!job) {
        return;
    }
    job->AddToTotalTimeList((1.0 / fraction) * elapsed);
    const std::optional<double> windowFull = job->CalculateAverageTotalTimeForSize(8);
    if (!windowFull) {
        return;
    }
    // Asked again on purpose: the second call finds the window at its size and leaves it.
    const double average = job->CalculateAverageTotalTimeForSize(8).value_or(*windowFull);
    const double remaining = std::max(0.0, average - elapsed + 0.5);
    // The encoder's estimate goes to the panel for any job, and is not kept in the job.
    if (const auto property = LockProperty(&ShareManager::processingRemainingTimeProperty)) {
        property->SetProcessingRemainingTime(remaining);
    }
}

void ShareManager::SetUploadingRemainingTimeForJob(const string& jobID, double elapsed,
                                                   double fraction) {
    const std::shared_ptr<ShareJob> job = GetJobW(jobID);
    if (!job) {
        return;
    }
    job->AddToTotalTimeList((1.0 / fraction) * elapsed);
    // No window here: the mean runs over every sample since the history was last cleared.
    const std::optional<double> average = job->CalculateAverageTotalTime();
    if (!average) {
        return;
    }
    const double remaining = std::max(0.0, *average - elapsed + 0.5);
    job->SetProcessingRemainingTime(remaining);
    if (IsActiveJob(jobID)) {
        if (const auto property = LockProperty(&ShareManager::processingRemainingTimeProperty)) {
            property->SetProcessingRemainingTime(remaining);
        }
    }
}

void ShareManager::SetUploadingSpeedForJob(const string& jobID, double elapsed, double /*fraction*/,
                                           double bytes) {
    const std::shared_ptr<ShareJob> job = GetJobW(jobID);
    if (!job) {
        return;
    }
    const double megabitsPerSecond = bytes * 8e-06 / elapsed;
    job->SetUploadingSpeed(megabitsPerSecond);
    if (IsActiveJob(jobID)) {
        if (const auto property = LockProperty(&ShareManager::uploadingSpeedProperty)) {
            property->SetUploadingSpeed(megabitsPerSecond);
        }
    }
}

void ShareManager::ClearTotalTimeListForJob(const string& jobID) {
    if (const std::shared_ptr<ShareJob> job = GetJobW(jobID)) {
        job->ClearTotalTimeList();
    }
}

void ShareManager::HandleUploadProgress(const std::shared_ptr<ShareJob>& job, const string& jobID,
                                        std::uint64_t sent, std::uint64_t total) {
    const double fraction = static_cast<double>(sent) / static_cast<double>(total);
    job->SetEncodingProgress(fraction);
    if (IsActiveJob(jobID)) {
        if (const auto property = LockProperty(&ShareManager::encodingProgressProperty)) {
            property->SetEncodingProgress(fraction);
        }
    }
    const double elapsed = GetElapsedTime(jobID);
    if (elapsed > 1e-6 && fraction > 0.0) {
        SetUploadingSpeedForJob(jobID, elapsed, fraction, static_cast<double>(sent));
        SetUploadingRemainingTimeForJob(jobID, elapsed, fraction);
    }
}

// --- upload and finalisation -----------------------------------------------------------------

void ShareManager::StartUpload(const string& jobID) {
    const std::shared_ptr<ShareJob> job = GetJobW(jobID);
    if (!job) {
        return;
    }
    GetSequenceValueFunction getValue;
    {
        const std::lock_guard lock(mutex);
        getValue = getSequenceValue;
    }
    const ProcessingGuids guids = job->GetProcessingGuids();
    Guid link;  // read as the host expects, not used further
    GetSequenceGuid(getValue, guids.projectGuid, guids.sequenceGuid, kReviewLinkGuidKey, link);
    Guid folder;
    GetSequenceGuid(getValue, guids.projectGuid, guids.sequenceGuid, kUploadFolderGuidKey, folder);

    // A first share names its version stack before it exists; every later version joins it.
    Guid versionStack = job->GetVersionStackGuid();
    if (versionStack.IsNil()) {
        versionStack = Guid::CreateUnique();
        job->SetVersionStackGuid(versionStack);
    }

    UploadProgressCallback progress = [life = life, job, jobID](std::uint64_t sent,
                                                                std::uint64_t total) {
        WithManager(life, [&](ShareManager& manager) {
            manager.HandleUploadProgress(job, jobID, sent, total);
        });
    };
    UploadFinishedCallback finished = [life = life, job, jobID, guids](bool ok, bool cancelled,
                                                                       const Guid& asset) {
        WithManager(life, [&](ShareManager& manager) {
            manager.HandleUploadFinished(job, jobID, guids, ok, cancelled, asset);
        });
    };
    string transferID;
    UploadToFolder(job->GetOutputFilePath(), folder, versionStack, transferID, progress, finished);
    // A cancel needs it. The status stays: the host reports EncodingStatus::Uploading itself.
    job->SetUploadingJobID(transferID);
}

void ShareManager::HandleUploadFinished(const std::shared_ptr<ShareJob>& job, const string& jobID,
                                        const ProcessingGuids& guids, bool ok, bool cancelled,
                                        const Guid& asset) {
    namespace logging = utility::SDMLogging;
    if (ok) {
        logging::LogUploadResult(logging::UploadResultKind::Success);
        SetSequenceValueFunction setValue;
        {
            const std::lock_guard lock(mutex);
            setValue = setSequenceValue;
        }
        const Guid& project = guids.projectGuid;
        const Guid& sequence = guids.sequenceGuid;
        SetSequenceGuid(setValue, project, sequence, kUploadedAssetGuidKey, asset);
        SetSequenceGuid(setValue, project, sequence, kReviewLinkGuidKey, job->GetReviewLinkGuid());
        SetSequenceString(setValue, project, sequence, kReviewLinkURLKey, job->GetReviewLinkURL());
        SetSequenceGuid(setValue, project, sequence, kVersionStackGuidKey,
                        job->GetVersionStackGuid());
        job->SetEncodingStatus(EncodingStatus::UploadDone);
        if (const auto status = LockProperty(&ShareManager::encodingStatusProperty)) {
            status->SetEncodingStatus(EncodingStatus::UploadDone);
        }
        if (const auto speed = LockProperty(&ShareManager::uploadingSpeedProperty)) {
            speed->SetUploadingSpeed(0.0);
        }
        FinalizeUpload(jobID);
        return;
    }

    EncodingStatus status = EncodingStatus::UploadCancelled;
    if (cancelled) {
        // The cancel has already dealt with the job; no toast.
        logging::LogUploadResult(logging::UploadResultKind::Cancel);
    } else {
        logging::LogUploadResult(logging::UploadResultKind::Failure);
        ShareFailed(jobID, ShareFailedReason::Upload);  // erases the job; this callback holds it
        status = EncodingStatus::UploadFailed;
    }
    job->SetEncodingStatus(status);
    if (const auto property = LockProperty(&ShareManager::encodingStatusProperty)) {
        property->SetEncodingStatus(status);
    }
    if (const auto view = LockProperty(&ShareManager::currentViewIDProperty)) {
        view->SetCurrentViewID(ShareForReviewViewID::ReviewInVantro);
    }
}

void ShareManager::FinalizeUpload(const string& jobID) {
    const std::shared_ptr<ShareJob> job = GetJobW(jobID);
    if (!job) {
        return;
    }
    const ProcessingGuids guids = job->GetProcessingGuids();
    const string outputFilePath = job->GetOutputFilePath();
    if (!job->GetAddToLink()) {
        // An update of shared content: the link already holds the version stack.
        FinishShare(job, jobID, outputFilePath);
        return;
    }
    GetSequenceValueFunction getValue;
    {
        const std::lock_guard lock(mutex);
        getValue = getSequenceValue;
    }
    Guid asset;
    GetSequenceGuid(getValue, guids.projectGuid, guids.sequenceGuid, kUploadedAssetGuidKey, asset);
    Guid link;
    GetSequenceGuid(getValue, guids.projectGuid, guids.sequenceGuid, kReviewLinkGuidKey, link);
    AddAssetToLink(asset, link, [life = life, job, jobID, guids, outputFilePath](bool ok) {
        WithManager(life, [&](ShareManager& manager) {
            if (ok) {
                manager.FinishShare(job, jobID, outputFilePath);
                return;
            }
            // The link does not hold the asset: the sequence must not claim it does. The
            // uploaded asset stays recorded.
            ClearSequenceValueFunction clearValue;
            {
                const std::lock_guard lock(manager.mutex);
                clearValue = manager.clearSequenceValue;
            }
            RemoveSequenceValue(clearValue, guids.projectGuid, guids.sequenceGuid,
                                kReviewLinkGuidKey);
            RemoveSequenceValue(clearValue, guids.projectGuid, guids.sequenceGuid,
                                kReviewLinkURLKey);
            RemoveSequenceValue(clearValue, guids.projectGuid, guids.sequenceGuid,
                                kVersionStackGuidKey);
            manager.ShareFailed(jobID, ShareFailedReason::Sharing);
        });
    });
}

void ShareManager::FinishShare(const std::shared_ptr<ShareJob>& job, const string& jobID,
                               const string& outputFilePath) {
    DeleteTempFile(outputFilePath);
    UpdateDirtyFlag(job);
    if (IsActiveJob(jobID)) {
        if (const auto view = LockProperty(&ShareManager::currentViewIDProperty)) {
            view->SetCurrentViewID(ShareForReviewViewID::CopyLinkSection);
        }
    }
    // The active id stays as it is; a job that the host moved on meanwhile stays filed.
    if (job->GetEncodingStatus() == EncodingStatus::UploadDone) {
        EraseJob(jobID);
    }
}

void ShareManager::SetUploadedAssetID(const Guid& project, const Guid& sequence,
                                      const Guid& asset) {
    SetSequenceValueFunction setValue;
    {
        const std::lock_guard lock(mutex);
        setValue = setSequenceValue;
    }
    SetSequenceGuid(setValue, project, sequence, kUploadedAssetGuidKey, asset);
}

void ShareManager::UpdateDirtyFlag(const std::shared_ptr<ShareJob>& job) {
    GetActiveSequenceFunction getActive;
    SetSequenceValueFunction setValue;
    {
        const std::lock_guard lock(mutex);
        getActive = getActiveSequence;
        setValue = setSequenceValue;
    }
    ProcessingGuids active;
    getActive(active.projectGuid, active.sequenceGuid);
    const ProcessingGuids shared = job->GetProcessingGuids();
    if (active == shared) {
        // The view model writes the value and updates the panel.
        if (const auto dirty = LockProperty(&ShareManager::activeAssetDirtyProperty)) {
            dirty->SetActiveAssetDirty(false);
        }
        return;
    }
    SetSequenceBool(setValue, shared.projectGuid, shared.sequenceGuid, kAssetModifiedAfterShareKey,
                    false);
}

// --- cancellation and failure ----------------------------------------------------------------

void ShareManager::CancelActiveProcessingJob() {
    string jobID;
    std::shared_ptr<ShareJob> job;
    CancelProcessingFunction cancelProcessing;
    {
        const std::lock_guard lock(mutex);
        jobID = activeSequenceJobID;
        const auto& byID = jobMap.get<1>();
        if (const auto found = byID.find(jobID); found != byID.end()) {
            job = found->job;
        }
        cancelProcessing = cancelProcessingMethod;
    }
    if (!job) {
        return;
    }
    switch (job->GetEncodingStatus()) {
        case EncodingStatus::Queued: {
            // The host takes the job out of the encoder's queue later, from the cancel queue.
            {
                const std::lock_guard lock(mutex);
                cancelJobQueue.push_back(jobID);
            }
            job->SetEncodingStatus(EncodingStatus::CancelRequested);
            job->SetReviewLinkURL(string());
            break;
        }
        case EncodingStatus::Encoding:
            cancelProcessing(jobID);
            CleanupCanceledJobInSarvex(jobID, job->GetOutputFilePath());
            break;
        case EncodingStatus::Uploading: {
            const string transferID = job->GetUploadingJobID();
            if (transferID.empty()) {
                break;
            }
            if (CancelUploadByID(transferID)) {
                job->SetEncodingStatus(EncodingStatus::UploadCancelled);
                CleanupCanceledJobInSarvex(jobID, job->GetOutputFilePath());
            } else {
                // Not announced: the transfer's own end decides what the user sees.
                job->SetEncodingStatus(EncodingStatus::UploadFailed);
            }
            break;
        }
        default:
            break;
    }
    if (const auto url = LockProperty(&ShareManager::reviewLinkURLProperty)) {
        url->SetReviewLinkURL(string());
    }
}

std::vector<string> ShareManager::GetCancelJobQueue() const {
    const std::lock_guard lock(mutex);
    return cancelJobQueue;
}

void ShareManager::RemoveJobInCancelJobQueueAt(std::size_t index) {
    const std::lock_guard lock(mutex);
    if (index >= cancelJobQueue.size()) {
        return;
    }
    cancelJobQueue.erase(cancelJobQueue.begin() + static_cast<std::ptrdiff_t>(index));
}

void ShareManager::RemoveCanceledJobInSarvex(const string& jobID) {
    CancelProcessingFunction cancelProcessing;
    {
        const std::lock_guard lock(mutex);
        cancelProcessing = cancelProcessingMethod;
    }
    cancelProcessing(jobID);
    GetAndCleanupCanceledJobInSarvex(jobID);
}

void ShareManager::GetAndCleanupCanceledJobInSarvex(const string& jobID) {
    if (const std::shared_ptr<ShareJob> job = GetJobW(jobID)) {
        CleanupCanceledJobInSarvex(jobID, job->GetOutputFilePath());
    }
}

void ShareManager::CleanupCanceledJobInSarvex(const string& jobID, const string& outputFilePath) {
    DeleteTempFile(outputFilePath);
    std::shared_ptr<ShareJob> erased;  // released after the lock
    {
        const std::lock_guard lock(mutex);
        auto& byID = jobMap.get<1>();
        if (const auto found = byID.find(jobID); found != byID.end()) {
            erased = found->job;
            byID.erase(found);
        }
        activeSequenceJobID.clear();
    }
}

void ShareManager::DeleteTempFile(const string& path) {
    const kelcore::filesupport::File file(path);
    if (!file.Exists()) {
        return;
    }
    try {
        file.Delete();
    } catch (const kelcore::filesupport::file_delete_exception&) {
        // A file that cannot be deleted never stops a share.
    }
}

void ShareManager::ShareFailed(const string& jobID, ShareFailedReason reason) {
    const std::shared_ptr<ShareJob> job = GetJobW(jobID);
    if (!job) {
        return;
    }
    if (const auto view = LockProperty(&ShareManager::currentViewIDProperty)) {
        view->SetCurrentViewID(ShareForReviewViewID::None);
    }
    const string outputFilePath = job->GetOutputFilePath();
    DeleteTempFile(outputFilePath);
    std::shared_ptr<ShareJob> erased;  // released after the lock
    {
        const std::lock_guard lock(mutex);
        auto& byID = jobMap.get<1>();
        if (const auto found = byID.find(jobID); found != byID.end()) {
            erased = found->job;
            byID.erase(found);
        }
        if (jobID == activeSequenceJobID) {
            activeSequenceJobID.clear();
        }
    }
    ShowFailureToast(outputFilePath, reason, false);
}

void ShareManager::ShowFailureToast(string path, ShareFailedReason reason, bool showTryAgain) {
    std::string name =
        kelcore::string::UTF16toStdString(kelcore::utility::FileUtils::GetPathFileName(path));
    if (name.size() > kToastFileNameBytes) {
        // Bytes, not characters: the cut may fall inside one, which is accepted.
        name.resize(kToastFileNameBytes);
        name += "...";
    }
    const std::string_view text = FailureText(reason);
    std::string message;
    if (!text.empty()) {
        message = kelcore::string::UTF16toStdString(
            kelcore::string::ReplaceInString(kelcore::config::Localizer::Get().GetString(text),
                                             kelcore::string::StdToUTF16String(name)));
    }
    kelcore::threads::AsyncCallFromMainThread(
        [message = std::move(message), showTryAgain] {
            DisplayFailureToast(message, showTryAgain);
        },
        0);
}

}  // namespace vantrokelui::model
