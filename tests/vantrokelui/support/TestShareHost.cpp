#include "TestShareHost.h"

#include <mutex>

#include <vantrokelui/model/EncoderPresetAttributes.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareModel.h>

namespace vantrokelui::model::testing {

struct TestShareHost::FolderChoice {
    std::mutex mutex;
    std::optional<Folder> folder;
    int writes = 0;
    std::shared_ptr<FakeSequenceHost> sequences;

    // Writes the chosen folder into the sequence active now. Any thread.
    void Write(bool countAsLibraryCall) {
        std::optional<Folder> chosen;
        {
            const std::lock_guard lock(mutex);
            chosen = folder;
            writes += countAsLibraryCall ? 1 : 0;
        }
        if (!chosen) {
            return;
        }
        Guid project;
        Guid sequence;
        sequences->GetActiveSequenceFn()(project, sequence);
        const auto set = sequences->SetSequenceValueFn();
        SetSequenceGuid(set, project, sequence, kUploadFolderGuidKey, chosen->folder);
        SetSequenceString(set, project, sequence, kUploadFolderPathKey, chosen->path);
        SetSequenceGuid(set, project, sequence, kUploadFolderParentProjGuidKey, chosen->project);
    }
};

TestShareHost::TestShareHost(std::shared_ptr<kelcore::threads::MainThreadQueue> queue)
    : queue(std::move(queue)), folderChoice(std::make_shared<FolderChoice>()) {
    folderChoice->sequences = sequences;
}

TestShareHost::~TestShareHost() {
    viewBinding.reset();
}

std::vector<EncoderPresetData> TestShareHost::Presets() {
    return {{u"H.264 Match Source", u"/presets/h264-match-source.epr", u"mp4"},
            {u"HEVC 4K", u"/presets/hevc-4k.epr", u"mov"}};
}

void TestShareHost::Install() {
    SetAssetDataMethods(sequences->GetActiveSequenceFn(), sequences->GetSequenceValueFn(),
                        sequences->SetSequenceValueFn(), sequences->ClearSequenceValueFn());
    SetAssetProcessingMethod(encoder->AssetProcessingFn(), encoder->CancelProcessingFn());
    const std::weak_ptr<FolderChoice> choice = folderChoice;
    SetNotifyingProperties(
        [choice] {
            if (const auto locked = choice.lock()) {
                locked->Write(true);
            }
        },
        std::weak_ptr<ActiveAssetNameNotifyingProperty>(properties),
        std::weak_ptr<ActiveAssetDirtyNotifyingProperty>(properties),
        std::weak_ptr<ReviewLinkURLNotifyingProperty>(properties),
        std::weak_ptr<CurrentViewIDNotifyingProperty>(properties),
        std::weak_ptr<EncodingStatusNotifyingProperty>(properties),
        std::weak_ptr<EncodingProgressNotifyingProperty>(properties),
        std::weak_ptr<ProcessingRemainingTimeNotifyingProperty>(properties),
        std::weak_ptr<UploadingSpeedNotifyingProperty>(properties),
        std::weak_ptr<EncoderPresetsNotifyingProperty>(properties),
        std::weak_ptr<SelectedEncoderPresetNotifyingProperty>(properties),
        std::weak_ptr<CreateNewLinkModeNotifyingProperty>(properties));
    SetEncoderPresets(Presets());
    viewBinding = properties->AddCurrentViewIDBinding(
        [this](ShareForReviewViewID view) { views.push_back(view); });
    Pump();
    // The binding's first delivery is the value it found; only changes from here on count.
    views.clear();
}

void TestShareHost::OpenSequence(const ProcessingGuids& guids, const string& name) {
    active = guids;
    sequences->SetActive(guids);
    properties->SetActiveAssetName(name);
    SetCurrentActiveSequenceAndProperties();
}

void TestShareHost::ChooseFolder(const Folder& folder) {
    {
        const std::lock_guard lock(folderChoice->mutex);
        folderChoice->folder = folder;
    }
    folderChoice->Write(false);
}

int TestShareHost::FolderWrites() const {
    const std::lock_guard lock(folderChoice->mutex);
    return folderChoice->writes;
}

void TestShareHost::StoreSelectedPreset() {
    const auto selected = properties->GetSelectedEncoderPreset();
    if (!selected) {
        return;
    }
    const EncoderPresetAttributes preset{selected->GetPresetName(), selected->GetPresetPath(),
                                         selected->GetExtension()};
    SetSequenceString(sequences->SetSequenceValueFn(), active.projectGuid, active.sequenceGuid,
                      kSelectedEncoderPresetKey, FormatEncoderPresetJSON(preset));
}

void TestShareHost::Share() {
    StoreSelectedPreset();
    ProcessAssetForReview();
}

void TestShareHost::ShowScreen(ShareForReviewViewID view) {
    properties->SetCurrentViewID(view);
    Pump();
}

TestShareHost::string TestShareHost::ShareUntilQueued() {
    const std::size_t jobsBefore = encoder->JobCount();
    const std::size_t toastsBefore = toasts.Toasts().size();
    Share();
    return AwaitQueued(jobsBefore, toastsBefore);
}

TestShareHost::string TestShareHost::AwaitQueued(std::size_t jobsBefore, std::size_t toastsBefore) {
    PumpUntil(
        [&] { return encoder->JobCount() > jobsBefore || toasts.Toasts().size() > toastsBefore; });
    const auto jobs = encoder->Jobs();
    if (jobs.size() <= jobsBefore) {
        return string();
    }
    // The library shows the queued screen right after it handed the job over.
    PumpUntil(
        [&] { return !views.empty() && views.back() == ShareForReviewViewID::EncodingQueued; });
    return jobs.back().jobID;
}

TestShareHost::ShareRun TestShareHost::FinishShare(const string& jobID) {
    const std::size_t toastsBefore = toasts.Toasts().size();
    ShareRun run;
    run.jobID = jobID;
    encoder->RunThroughEncoding(jobID);
    encoder->StartUploading(jobID);
    PumpUntil([&] {
        return CurrentView() == ShareForReviewViewID::CopyLinkSection ||
               toasts.Toasts().size() > toastsBefore;
    });
    Pump();
    run.view = CurrentView();
    run.newToasts = toasts.Toasts().size() - toastsBefore;
    run.finished = run.view == ShareForReviewViewID::CopyLinkSection || run.newToasts > 0;
    return run;
}

TestShareHost::ShareRun TestShareHost::RunToLink() {
    const std::size_t toastsBefore = toasts.Toasts().size();
    const string jobID = ShareUntilQueued();
    if (jobID.empty()) {
        ShareRun run;
        run.view = CurrentView();
        run.newToasts = toasts.Toasts().size() - toastsBefore;
        run.finished = run.newToasts > 0;
        return run;
    }
    ShareRun run = FinishShare(jobID);
    run.newToasts = toasts.Toasts().size() - toastsBefore;
    return run;
}

bool TestShareHost::PumpUntil(const std::function<bool()>& done) {
    return queue->PumpUntil(done, kWaitLimit);
}

void TestShareHost::Pump() {
    queue->RunUntilEmpty();
}

ShareForReviewViewID TestShareHost::CurrentView() const {
    return properties->GetCurrentViewID();
}

std::map<std::string, std::string> TestShareHost::StoredValues() const {
    std::map<std::string, std::string> values;
    for (const auto& [key, value] : sequences->ValuesOf(active)) {
        values.emplace(kelcore::string::UTF16toStdString(key),
                       kelcore::string::UTF16toStdString(value));
    }
    return values;
}

std::optional<std::string> TestShareHost::Stored(kelcore::string::string_view key) const {
    const auto value = sequences->Find(active, key);
    return value ? std::optional(kelcore::string::UTF16toStdString(*value)) : std::nullopt;
}

}  // namespace vantrokelui::model::testing
