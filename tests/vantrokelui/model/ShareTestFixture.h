// The common ground of the share pipeline's model tests: the test's thread as the main thread
// with a queue it pumps, the user cache directory moved into a temporary directory, an in-memory
// host (FakeSequenceHost) and encoder (RecordingEncoder), the panel's properties with a logged
// writer (RecordingPanel), and a ShareManager of the test's own with all of them injected.
// Helpers put a sequence into the stages a share starts from. The test's thread.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <support/MainThreadFixture.h>
#include <support/ScopedEnvironmentVariable.h>
#include <support/TemporaryDirectory.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareManager.h>

#include "RecordingPanel.h"
#include "vantrokelui/support/FakeSequenceHost.h"

namespace vantrokelui::model::testing {

/// The host's encoder as the library sees it: records each render request and each cancel.
/// Any thread.
class RecordingEncoder {
public:
    struct Render {
        kelcore::string::string outputFilePath;
        kelcore::string::string jobID;
        kelcore::string::string presetPath;
    };

    std::vector<Render> Renders() const {
        const std::lock_guard lock(mutex);
        return renders;
    }
    std::vector<kelcore::string::string> Cancels() const {
        const std::lock_guard lock(mutex);
        return cancels;
    }
    /// Waits until `count` renders were asked for; whether they were. A wall-clock bound for a
    /// failing test only.
    bool WaitForRenders(std::size_t count,
                        std::chrono::seconds limit = std::chrono::seconds(120)) const {
        std::unique_lock lock(mutex);
        return asked.wait_for(lock, limit, [&] { return renders.size() >= count; });
    }

    AssetProcessingFunction RenderFn(const std::shared_ptr<RecordingEncoder>& self) {
        return [self](const kelcore::string::string& path, const kelcore::string::string& jobID,
                      const kelcore::string::string& presetPath) {
            const std::lock_guard lock(self->mutex);
            self->renders.push_back({path, jobID, presetPath});
            self->asked.notify_all();
        };
    }
    CancelProcessingFunction CancelFn(const std::shared_ptr<RecordingEncoder>& self) {
        return [self](const kelcore::string::string& jobID) {
            const std::lock_guard lock(self->mutex);
            self->cancels.push_back(jobID);
        };
    }

private:
    mutable std::mutex mutex;
    mutable std::condition_variable asked;
    std::vector<Render> renders;
    std::vector<kelcore::string::string> cancels;
};

class ShareTestFixture : public testsupport::MainThreadFixture {
protected:
    using Guid = kelcore::utility::Guid;
    using string = kelcore::string::string;

    static inline const ProcessingGuids kSequenceA{Guid(1, 1), Guid(2, 1)};
    static inline const ProcessingGuids kSequenceB{Guid(1, 1), Guid(2, 2)};
    static inline const Guid kFolder{0xf0, 1};
    static inline const Guid kCloudProject{0xc0, 1};

    void SetUp() override {
        MainThreadFixture::SetUp();
        InjectInto(manager);
        host->SetActive(kSequenceA);
        panel->SetActiveAssetName(u"Cut 1");
        SetPresets({{u"H.264 Match Source", u"/presets/h264.epr", u"mp4"},
                    {u"ProRes 422", u"/presets/prores.epr", u"mov"}});
        Pump();
        panel->ClearWrites();
    }

    /// Injects the fixture's host, encoder and panel into `target`.
    void InjectInto(ShareManager& target) {
        target.SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                   host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        target.SetAssetProcessingMethod(encoder->RenderFn(encoder), encoder->CancelFn(encoder));
        RecordingPanel::Install(target, panel, [writes = folderWrites] { ++*writes; });
    }

    void SetPresets(const std::vector<EncoderPresetData>& presets) {
        manager.SetEncoderPresets(presets);
    }

    /// The folder and its cloud project, as the panel's picker writes them.
    void ChooseFolder(const ProcessingGuids& guids = kSequenceA) {
        host->Put(guids, kUploadFolderGuidKey, kFolder.AsString());
        host->Put(guids, kUploadFolderParentProjGuidKey, kCloudProject.AsString());
        host->Put(guids, kUploadFolderPathKey, u"Studio/Editors/Alpha");
    }
    /// What a finished share leaves in the sequence.
    void StoreSharedLink(const ProcessingGuids& guids, const Guid& stack, const Guid& link,
                         std::string_view url) {
        host->Put(guids, kVersionStackGuidKey, stack.AsString());
        host->Put(guids, kReviewLinkGuidKey, link.AsString());
        host->Put(guids, kReviewLinkURLKey, U16(url));
    }
    void StorePreset(const ProcessingGuids& guids, const EncoderPresetAttributes& preset) {
        host->Put(guids, kSelectedEncoderPresetKey, FormatEncoderPresetJSON(preset));
    }

    /// Files a job for `guids` as ProcessAssetForReview_Internal would, with `status`.
    std::shared_ptr<ShareJob> FileJob(std::string_view id, const ProcessingGuids& guids,
                                      EncodingStatus status, ReviewAttributes review = {},
                                      string outputFilePath = {}) {
        manager.AddJobToMap(U16(id), guids, EncodingAttributes{status, 0.0}, review,
                            outputFilePath.empty() ? OutputPath("Cut 1.mp4") : outputFilePath);
        return manager.GetJobW(U16(id));
    }
    /// Makes the job filed under `id` the active one, as re-aiming at its sequence does.
    void Activate(const ProcessingGuids& guids) {
        host->SetActive(guids);
        manager.SetCurrentActiveSequenceAndProperties();
    }

    /// The path of `name` in the (temporary) user cache directory.
    string OutputPath(std::string_view name) const {
        return U16((cacheHome.Path() / "vantrokelui" / std::string(name)).string());
    }
    /// Writes a small file at `path`, as the encoder would.
    static void WriteFile(const string& path) {
        const std::filesystem::path file(kelcore::string::UTF16toStdString(path));
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << "rendered";
    }
    static bool FileExists(const string& path) {
        return std::filesystem::exists(kelcore::string::UTF16toStdString(path));
    }
    static std::string U8(const string& text) { return kelcore::string::UTF16toStdString(text); }

    testsupport::TemporaryDirectory cacheHome;
    testsupport::ScopedEnvironmentVariable cacheVariable{"XDG_CACHE_HOME",
                                                         cacheHome.Path().string()};
    std::shared_ptr<FakeSequenceHost> host = FakeSequenceHost::Create();
    std::shared_ptr<RecordingEncoder> encoder = std::make_shared<RecordingEncoder>();
    std::shared_ptr<RecordingPanel> panel = RecordingPanel::Create();
    std::shared_ptr<std::atomic<int>> folderWrites = std::make_shared<std::atomic<int>>(0);
    ShareManager manager;
};

}  // namespace vantrokelui::model::testing
