#include "ShareCommand.h"

#include <unistd.h>

#include <atomic>
#include <iostream>
#include <vector>

#include <kelcore/threads/MainThread.h>
#include <vantrokelui/model/EncoderPresetAttributes.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/ProcessingGuids.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareJob.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/nodes/NodeFunctions.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include "CloudBrowser.h"
#include "CloudSession.h"
#include "FailureToastManager.h"
#include "PresetDirectory.h"
#include "ProgressDisplay.h"
#include "ProjectFile.h"
#include "SarvexProcess.h"
#include "ShareHost.h"

namespace vantroshare {

namespace model = vantrokelui::model;
using vantrokelui::EncodingStatus;
using vantrokelui::ShareForReviewViewID;
using vantrokelui::viewmodel::ShareForReviewViewModel;

namespace {

constexpr std::chrono::seconds kStorageCheckLimit{60};
constexpr int kCommitAttempts = 10;
// How long a cancel may take to settle, a link being made included (its job is cancelled too).
constexpr std::chrono::seconds kCancelLimit{120};
// A share has no deadline of its own; this only keeps a wedged process from living forever.
constexpr std::chrono::hours kShareLimit{24};

int Fail(const std::string& message) {
    std::cerr << "vantro-share: " << message << std::endl;
    return 1;
}

std::string Join(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "\"" : ", \"") + name + "\"";
    }
    return text.empty() ? "none" : text;
}

ProgressDisplay::Stage StageOf(EncodingStatus status) {
    switch (status) {
        case EncodingStatus::Queued:
        case EncodingStatus::CancelRequested:
            return ProgressDisplay::Stage::Queued;
        case EncodingStatus::Encoding:
            return ProgressDisplay::Stage::Encoding;
        case EncodingStatus::Encoded:
        case EncodingStatus::Uploading:
        case EncodingStatus::UploadDone:
            return ProgressDisplay::Stage::Uploading;
        default:
            return ProgressDisplay::Stage::CreatingLink;
    }
}

}  // namespace

ShareCommand::ShareCommand(MainLoop& loop, Options options)
    : loop(loop), options(std::move(options)) {}

int ShareCommand::Run() {
    // What the library and the user both need before anything talks to the network.
    std::shared_ptr<ProjectFile> project;
    try {
        project = ProjectFile::Load(options.projectFile);
    } catch (const ProjectFileError& error) {
        return Fail(error.what());
    }
    const auto sequence = project->FindSequence(options.sequence);
    if (!sequence) {
        std::vector<std::string> names;
        for (const auto& info : project->Sequences()) {
            names.push_back(info.name);
        }
        return Fail("no sequence named \"" + options.sequence + "\" in " +
                    options.projectFile.string() + " (it has " + Join(names) + ")");
    }
    const PresetDirectory presets = PresetDirectory::Read(options.presetDirectory);
    if (presets.Presets().empty()) {
        return Fail("no encoder presets in " + options.presetDirectory.string());
    }
    if (!options.preset.empty() && !presets.Find(options.preset)) {
        return Fail("no preset named \"" + options.preset +
                    "\" (presets: " + Join(presets.Names()) + ")");
    }
    const std::vector<std::string> folderParts = CloudBrowser::SplitPath(options.folder);
    if (folderParts.size() < 4) {
        return Fail(
            "--folder needs ACCOUNT/WORKSPACE/PROJECT/FOLDER (FOLDER the project's root folder "
            "or a folder path below it), not \"" +
            options.folder + "\"");
    }

    CloudSession::Start();
    if (!CloudSession::HasStoredToken()) {
        return Fail(CloudSession::NotSignedInMessage());
    }

    auto toasts = FailureToastManager::Install();
    auto host = ShareHost::Create(project);
    host->SetActiveSequence(*sequence);
    std::unique_ptr<SarvexProcess> sarvex;
    try {
        std::string socket = options.sarvexSocket;
        if (socket.empty()) {
            sarvex = std::make_unique<SarvexProcess>(options.sarvexProgram);
            socket = sarvex->SocketPath();
        }
        host->AttachSarvex(socket);
    } catch (const std::exception& error) {
        return Fail(error.what());
    }

    auto viewModel = ShareForReviewViewModel::Create();
    host->Install(viewModel);
    model::SetEncoderPresets(presets.Presets());

    const model::ProcessingGuids guids{project->ProjectID(), *sequence};
    try {
        model::EncoderPresetAttributes stored;
        (void)model::GetEncoderPresetFromSequence(guids, stored);
    } catch (const std::exception&) {
        // The library cannot even fall back from this text; it is not handed over this run and
        // the share stores a good one.
        const std::string key = kelcore::string::UTF16toStdString(model::kSelectedEncoderPresetKey);
        std::cerr << "vantro-share: the stored preset of \"" << options.sequence
                  << "\" cannot be read; using the selected preset" << std::endl;
        host->IgnoreStoredValue(key);
    }

    viewModel->SetActiveAssetName(kelcore::string::StdToUTF16String(options.sequence));
    // Shared with the binding: a delivery already queued still runs after the binding has gone.
    auto views = std::make_shared<std::vector<ShareForReviewViewID>>();
    const auto viewBinding = viewModel->AddCurrentViewIDBinding(
        [views](ShareForReviewViewID id) { views->push_back(id); });
    loop.SetCancellable(true);
    if (const auto failure = CloudSession::SignInQuietly(loop, viewModel, true)) {
        return loop.Interrupted() ? MainLoop::kInterruptedExitCode : Fail(*failure);
    }
    loop.RunPending();
    const ShareForReviewViewID opened = viewModel->GetCurrentViewID();
    if (opened == ShareForReviewViewID::NoAssetProcessor) {
        return Fail("sarvex is not reachable");
    }
    if (opened == ShareForReviewViewID::Offline) {
        return Fail("the service at " + CloudSession::ServiceURL() + " is not reachable");
    }

    // An edit since the last share marks the sequence modified, as an editor does on a change.
    const std::string fingerprint = project->ContentFingerprint(*sequence);
    const std::string shared = project->SharedFingerprint(*sequence);
    if (!shared.empty() && shared != fingerprint) {
        viewModel->SetActiveAssetDirty(true);
    }

    // The picker: the folder found in the tree, a new link first when asked, then Commit.
    // The back end may replace the tree's nodes while they are walked (a list fetched again
    // makes new nodes), and a folder cut off from its project cannot be committed; the walk is
    // then done again over the new nodes.
    const std::shared_ptr<vantrokelui::VantroUser> user = viewModel->GetUser();
    CloudBrowser browser(loop, user);
    if (options.newLink) {
        viewModel->CreateNewLink();
    }
    bool committed = false;
    for (int attempt = 0; attempt < kCommitAttempts && !committed; ++attempt) {
        const CloudBrowser::Result found = browser.Walk(folderParts, true);
        if (loop.Interrupted()) {
            return MainLoop::kInterruptedExitCode;
        }
        if (!found.node) {
            return Fail(found.error);
        }
        const auto folder = std::dynamic_pointer_cast<vantrokelui::VantroFolder>(found.node);
        if (!folder) {
            return Fail("\"" + options.folder + "\" is a " + CloudBrowser::KindOf(found.node) +
                        ", not a folder");
        }
        if (!vantrokelui::GetProject(folder) || !vantrokelui::GetAccount(folder)) {
            continue;
        }
        // The picker: the folder step, the row chosen, Commit.
        viewModel->SetCurrentViewID(ShareForReviewViewID::SelectFolder);
        user->SetSelection(folder);
        viewModel->LocationPickerSelectionCommitted();
        // Without a stored folder and project the library's Share would stop without a word.
        committed = vantrokelui::GetProject(folder) && vantrokelui::GetAccount(folder) &&
                    user->GetSelectionPath() != u"/" &&
                    (options.newLink || (host->Stored(model::kUploadFolderGuidKey) &&
                                         host->Stored(model::kUploadFolderParentProjGuidKey)));
    }
    if (!committed) {
        return Fail("the folder \"" + options.folder +
                    "\" kept changing at the service while it was chosen; try again");
    }

    if (!options.preset.empty()) {
        for (const auto& preset : viewModel->GetEncoderPresets()) {
            if (kelcore::string::UTF16toStdString(preset->GetPresetName()) == options.preset) {
                viewModel->SetSelectedEncoderPreset(preset);
            }
        }
    }
    if (!viewModel->GetSelectedEncoderPreset()) {
        return Fail("no encoder preset is selected");
    }

    // The Share button: the storage check first, on the back end's executor.
    auto checked = std::make_shared<std::atomic<int>>(-1);
    viewModel->CheckStorageLimitOnSelectedAccount([checked](bool exceeded) {
        checked->store(exceeded ? 1 : 0);
        kelcore::threads::AsyncCallFromMainThread([] {});
    });
    if (!loop.RunUntil([&] { return checked->load() >= 0 || loop.Interrupted(); },
                       kStorageCheckLimit)) {
        return Fail("the storage check of the account did not answer");
    }
    if (loop.Interrupted()) {
        return MainLoop::kInterruptedExitCode;
    }
    if (checked->load() == 1) {
        viewModel->SetCurrentViewID(ShareForReviewViewID::StorageLimitExceeded);
        return Fail("the account \"" + folderParts[0] +
                    "\" is over its storage limit; nothing was shared");
    }

    ProgressDisplay progress(std::cout, ::isatty(STDOUT_FILENO) != 0);
    const auto render = [&] {
        if (loop.Interrupted()) {
            progress.Show(ProgressDisplay::Stage::Cancelling, 0.0, 0.0, 0.0);
            return;
        }
        progress.Show(StageOf(viewModel->GetEncodingStatus()), viewModel->GetEncodingProgress(),
                      viewModel->GetUploadingSpeed(), viewModel->GetProcessingRemainingTime());
    };
    const auto statusBinding = viewModel->AddEncodingStatusBinding([](EncodingStatus) {});
    const auto progressBinding = viewModel->AddEncodingProgressBinding([](double) {});
    const auto timeBinding = viewModel->AddProcessingRemainingTimeBinding([](double) {});
    const auto speedBinding = viewModel->AddUploadingSpeedBinding([](double) {});
    loop.RunPending();

    views->clear();
    viewModel->WriteSelectedEncoderPresetToSequence();
    model::ProcessAssetForReview();

    bool uploadCancelIssued = false;
    // The copy-link screen counts once this share has shown its progress: the same screen may
    // also come from an opening decision (a stored link) delivered late.
    const auto linkShown = [&] {
        bool progressShown = false;
        for (const ShareForReviewViewID id : *views) {
            progressShown = progressShown || id == ShareForReviewViewID::EncodingQueued ||
                            id == ShareForReviewViewID::EncodingProgress ||
                            id == ShareForReviewViewID::UploadProgress;
            if (progressShown && id == ShareForReviewViewID::CopyLinkSection) {
                return true;
            }
        }
        return false;
    };
    // One step of a cancel, as often as the loop wakes: cancel whatever job stands, work the
    // cancel queue, and answer whether everything has settled.
    const auto stepCancel = [&] {
        if (const auto job = model::GetActiveSequenceJob()) {
            const EncodingStatus status = job->GetEncodingStatus();
            if (status == EncodingStatus::Queued || status == EncodingStatus::Encoding ||
                status == EncodingStatus::Uploading) {
                uploadCancelIssued = uploadCancelIssued || status == EncodingStatus::Uploading;
                model::CancelActiveProcessingJob();
            }
        }
        host->WorkCancelQueue();
        if (toasts->Failed() || linkShown()) {
            return true;
        }
        // Pressed but no job yet: the link is being made, and its job gets cancelled when it
        // comes.
        const std::vector<std::string> submitted = host->SubmittedJobs();
        if (submitted.empty()) {
            return false;
        }
        for (const std::string& id : submitted) {
            if (!host->SarvexDoneWith(id)) {
                return false;
            }
        }
        if (model::GetActiveSequenceJob()) {
            return false;
        }
        const EncodingStatus status = viewModel->GetEncodingStatus();
        return !uploadCancelIssued || status == EncodingStatus::UploadCancelled ||
               status == EncodingStatus::UploadFailed;
    };
    loop.RunUntil(
        [&] {
            render();
            return loop.Interrupted() || linkShown() || toasts->Failed();
        },
        kShareLimit);
    const bool cancelling = loop.Interrupted();
    if (cancelling) {
        render();
        if (!loop.RunUntil(stepCancel, kCancelLimit)) {
            progress.Finish();
            std::cerr << "vantro-share: the cancel did not settle within " << kCancelLimit.count()
                      << " s" << std::endl;
        }
    }
    progress.Finish();

    int exitCode = 1;
    if (cancelling) {
        exitCode = MainLoop::kInterruptedExitCode;
        if (linkShown()) {
            std::cerr << "vantro-share: the share had finished before the cancel: "
                      << kelcore::string::UTF16toStdString(viewModel->GetReviewLinkURL())
                      << std::endl;
        } else {
            std::cerr << "vantro-share: cancelled" << std::endl;
        }
    } else if (linkShown() && !toasts->Failed()) {
        project->SetSharedFingerprint(*sequence, fingerprint);
        std::cout << kelcore::string::UTF16toStdString(viewModel->GetReviewLinkURL()) << std::endl;
        exitCode = 0;
    } else if (!toasts->Failed()) {
        exitCode = Fail("the share did not finish");
    }
    for (const std::string& failure : host->SaveFailures()) {
        std::cerr << "vantro-share: a setting could not be saved: " << failure << std::endl;
    }
    host->DetachSarvex();
    sarvex.reset();
    loop.RunPending();
    return exitCode;
}

}  // namespace vantroshare
