// The host's side of a share, for tests that run the whole pipeline: what a host injects into
// the library (the four sequence functions over an in-memory FakeSequenceHost, the encoder's two
// functions over a TestEncoder, the presets, and the panel's eleven properties in
// PanelProperties with a folder-settings writer), a toast recorder, and the steps a user and the
// host take: open a sequence, choose a folder, press Share, let the encoder render.
//
// Owned by one test; lives on the test's thread, which is the main thread and pumps the queue it
// is given. The library reaches the host's parts from its own threads too; each is safe there.
//
//   TestShareHost host(queue);
//   host.Install();
//   host.OpenSequence(guids, u"Cut 1");
//   host.ChooseFolder({folder, u"Studio/Editors/Alpha", project});
//   const auto run = host.RunToLink();
//   EXPECT_EQ(run.view, ShareForReviewViewID::CopyLinkSection);
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include <kelcore/string/String.h>
#include <kelcore/threads/MainThreadQueue.h>
#include <kelcore/utility/Guid.h>
#include <vantrokelui/model/EncoderPresetData.h>
#include <vantrokelui/model/ProcessingGuids.h>
#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/viewmodel/ShareForReviewViewID.h>

#include "FakeSequenceHost.h"
#include "PanelProperties.h"
#include "RecordingToastManager.h"
#include "TestEncoder.h"

namespace vantrokelui::model::testing {

class TestShareHost {
public:
    using Guid = kelcore::utility::Guid;
    using string = kelcore::string::string;

    /// A cloud folder as the panel's picker commits it.
    struct Folder {
        Guid folder;
        string path;
        Guid project;  ///< the cloud project that holds the folder
    };

    /// Where one share ended.
    struct ShareRun {
        string jobID;  ///< empty when the encoder never got a job
        ShareForReviewViewID view = ShareForReviewViewID::None;
        std::size_t newToasts = 0;  ///< toasts shown during the run
        bool finished = false;      ///< false when the wait ran out
    };

    /// How long a wait for the library may take before the test fails: a wall-clock bound for a
    /// broken run only, generous for sanitized builds.
    static constexpr std::chrono::seconds kWaitLimit{120};

    explicit TestShareHost(std::shared_ptr<kelcore::threads::MainThreadQueue> queue);
    ~TestShareHost();
    TestShareHost(const TestShareHost&) = delete;
    TestShareHost& operator=(const TestShareHost&) = delete;

    /// Injects everything into the library (model::SetAssetDataMethods,
    /// SetAssetProcessingMethod, SetNotifyingProperties, SetEncoderPresets) and starts recording
    /// the panel's screens.
    void Install();

    /// Makes `guids` the host's active sequence, named `name` in the panel.
    void OpenSequence(const ProcessingGuids& guids, const string& name);
    ProcessingGuids ActiveSequence() const { return active; }
    /// The panel's folder choice, written into the active sequence at once (as committing the
    /// picker does) and again whenever the library calls the folder-settings writer.
    void ChooseFolder(const Folder& folder);
    /// How often the library called the folder-settings writer.
    int FolderWrites() const;

    /// The presets handed to the library; the first is selected.
    static std::vector<EncoderPresetData> Presets();

    /// Puts the panel on `view`, as its own navigation would, and delivers it.
    void ShowScreen(ShareForReviewViewID view);

    /// Stores the selected preset with the active sequence, as the panel does when the user
    /// picks one and again when Share is pressed.
    void StoreSelectedPreset();
    /// Presses Share as the panel does: stores the selected preset with the sequence, then
    /// model::ProcessAssetForReview.
    void Share();
    /// Share, then the encoder renders the job and hands it to the upload; waits (pumping) until
    /// the panel shows the link (view 10) or a failure toast has come. A link that cannot be made
    /// ends the run before the encoder has a job.
    ShareRun RunToLink();
    /// Share, then waits until the encoder has the new job (or a toast came); its id, or empty.
    string ShareUntilQueued();
    /// Waits until the encoder has more than `jobsBefore` jobs or more than `toastsBefore`
    /// toasts came; the newest job's id, or empty.
    string AwaitQueued(std::size_t jobsBefore, std::size_t toastsBefore);
    /// The encoder renders `jobID` and hands it to the upload; waits as RunToLink does.
    ShareRun FinishShare(const string& jobID);

    /// Pumps the main thread until `done` holds or kWaitLimit passes; whether it held.
    bool PumpUntil(const std::function<bool()>& done);
    /// Runs what the main thread has queued.
    void Pump();

    /// The panel's screens as they were delivered on the main thread, oldest first.
    std::vector<ShareForReviewViewID> Views() const { return views; }
    ShareForReviewViewID CurrentView() const;
    /// The values stored with the active sequence, by key, in UTF-8.
    std::map<std::string, std::string> StoredValues() const;
    /// One value stored with the active sequence, in UTF-8.
    std::optional<std::string> Stored(kelcore::string::string_view key) const;

    FakeSequenceHost& Sequences() { return *sequences; }
    TestEncoder& Encoder() { return *encoder; }
    PanelProperties& Properties() { return *properties; }
    vantrokelui::testing::RecordingToastManager& Toasts() { return toasts; }

private:
    struct FolderChoice;  // shared with the writer the library holds

    std::shared_ptr<kelcore::threads::MainThreadQueue> queue;
    std::shared_ptr<FakeSequenceHost> sequences = FakeSequenceHost::Create();
    std::shared_ptr<TestEncoder> encoder = TestEncoder::Create();
    std::shared_ptr<PanelProperties> properties = PanelProperties::Create();
    vantrokelui::testing::RecordingToastManager toasts;
    std::shared_ptr<FolderChoice> folderChoice;
    ProcessingGuids active;
    std::vector<ShareForReviewViewID> views;
    std::shared_ptr<utility::DataBinding> viewBinding;
};

}  // namespace vantrokelui::model::testing
