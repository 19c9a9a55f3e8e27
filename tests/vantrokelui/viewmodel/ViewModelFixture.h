// The common ground of the view model's tests: the isolated environment of the sign-in tests
// (temporary XDG directories and debug database, no keyring; the server only when a test starts
// it), the test's thread as the main thread with a queue it pumps, an in-memory host sequence
// (FakeSequenceHost) injected into both the view model and the share pipeline, an encoder whose
// presence the test sets, a connection monitor the test drives, and a recorder of every
// delivered CurrentViewID. Each test runs in its own process, so the pipeline's singleton and
// the sign-in state start empty. The test's thread.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <kelcore/debug/DebugDatabase.h>
#include <kelcore/string/String.h>
#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>
#include <kelcore/utility/Guid.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/ShareManager.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include "FakeNetworkMonitor.h"
#include "vantrokelui/support/CloudShareFixture.h"
#include "vantrokelui/support/FakeSequenceHost.h"

namespace vantrokelui {

// Readable names of parameterised tests.
inline void PrintTo(ShareForReviewViewID id, std::ostream* out) {
    *out << ShareForReviewViewIDDebugName(id) << "(" << static_cast<int>(id) << ")";
}
inline void PrintTo(EncodingStatus status, std::ostream* out) {
    *out << "EncodingStatus(" << static_cast<int>(status) << ")";
}

}  // namespace vantrokelui

namespace vantrokelui::viewmodel::testing {

using ViewID = ShareForReviewViewID;

/// A fetched-looking tree: user / account "Studio" / workspace "Editors" / project "Alpha" /
/// root folder / folder "Reviews". Made by the test; nothing in it talks to a service.
struct LocalTree {
    std::shared_ptr<VantroUser> user;
    std::shared_ptr<VantroAccount> account;
    std::shared_ptr<VantroWorkspace> workspace;
    std::shared_ptr<VantroProject> project;
    std::shared_ptr<VantroFolder> root;
    std::shared_ptr<VantroFolder> folder;

    static LocalTree Make() {
        LocalTree tree;
        tree.user = std::make_shared<VantroUser>();
        tree.user->SetID(kelcore::utility::Guid::CreateUnique());
        tree.user->SetName(u"ann");
        tree.account = std::make_shared<VantroAccount>(tree.user);
        tree.account->SetID(kelcore::utility::Guid::CreateUnique());
        tree.account->SetName(u"Studio");
        tree.workspace = std::make_shared<VantroWorkspace>(tree.account);
        tree.workspace->SetID(kelcore::utility::Guid::CreateUnique());
        tree.workspace->SetName(u"Editors");
        tree.project = std::make_shared<VantroProject>(tree.workspace);
        tree.project->SetID(kelcore::utility::Guid::CreateUnique());
        tree.project->SetName(u"Alpha");
        tree.root = std::make_shared<VantroFolder>(tree.project);
        tree.root->SetID(kelcore::utility::Guid::CreateUnique());
        tree.root->SetName(u"root");
        tree.folder = std::make_shared<VantroFolder>(tree.root);
        tree.folder->SetID(kelcore::utility::Guid::CreateUnique());
        tree.folder->SetName(u"Reviews");
        tree.root->SetFolders({tree.folder});
        tree.project->SetRootFolder(tree.root);
        tree.workspace->SetProjects({tree.project});
        tree.account->SetWorkspaces({tree.workspace});
        tree.user->SetAccounts({tree.account});
        return tree;
    }
};

class ViewModelFixture : public vantrokeluitest::CloudShareFixture {
protected:
    using Guid = kelcore::utility::Guid;
    using string = kelcore::string::string;

    void SetUp() override {
        CloudShareFixture::SetUp();
        kelcore::threads::SetMainThread();
        queue = std::make_shared<kelcore::threads::MainThreadQueue>();
        kelcore::threads::SetMainThreadDispatcher(queue);
        guids = {Guid::CreateUnique(), Guid::CreateUnique()};
        host = model::testing::FakeSequenceHost::Create();
        host->SetActive(guids);
        model::SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                   host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        monitor = std::make_shared<FakeNetworkMonitor>(true);
        viewModel = ShareForReviewViewModel::Create();
        Inject(viewModel);
        viewModel->SetActiveAssetName(u"Cut 1");
        RecordViews();
        Pump();
        delivered.clear();
    }

    void TearDown() override {
        viewBinding.reset();
        viewModel.reset();
        Pump();
        kelcore::threads::SetMainThreadDispatcher(nullptr);
        CloudShareFixture::TearDown();
    }

    /// The host's injections, as the host makes them before the first open.
    void Inject(const std::shared_ptr<ShareForReviewViewModel>& target) {
        // The view model's writes are counted apart from the pipeline's.
        target->SetAssetDataMethods(
            host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
            [this, set = host->SetSequenceValueFn()](const Guid& project, const Guid& sequence,
                                                     const string& key, const string& value) {
                ++sequenceWrites;
                return set(project, sequence, key, value);
            },
            host->ClearSequenceValueFn());
        target->SetAssetProcessorInstalledMethod([this] {
            ++installedAsks;
            return installed.load();
        });
        const std::shared_ptr<FakeNetworkMonitor> fake = monitor;
        target->SetNetworkConnectionMonitor([fake] { return fake; });
    }

    /// Records each delivered view id (the first delivery is the value at subscription).
    void RecordViews() {
        viewBinding =
            viewModel->AddCurrentViewIDBinding([this](ViewID id) { delivered.push_back(id); });
    }

    std::size_t Pump() { return queue->RunUntilEmpty(); }
    void PumpUntil(const std::function<bool()>& done,
                   std::chrono::milliseconds timeout = std::chrono::seconds(60)) {
        ASSERT_TRUE(queue->PumpUntil(done, timeout)) << "condition not met within the timeout";
    }

    /// Sets a debug-database key for the rest of the test (nullopt removes it).
    void SetKey(std::string_view key, std::optional<std::string> value) {
        SetEnvironment(kelcore::debug::DebugDatabase::EnvironmentName(key), std::move(value));
    }

    ViewID View() const { return viewModel->GetCurrentViewID(); }

    /// Opens the panel and delivers what it set.
    void Open() {
        viewModel->StartShareForReviewPopup();
        Pump();
    }

    /// Files a job for the active sequence in the pipeline with `status` and `link`.
    std::shared_ptr<model::ShareJob> AddJob(EncodingStatus status, string link = {}) {
        const string jobID = Guid::CreateUnique().AsString();
        lastJobID = jobID;
        model::ReviewAttributes review;
        review.reviewLinkURL = std::move(link);
        model::ShareManager::GetInstance().AddJobToMap(jobID, guids, {status, 0.0}, review,
                                                       u"/nonexistent/vantrokelui-test.mp4");
        return model::ShareManager::GetInstance().GetJobW(jobID);
    }

    /// The value stored with the active sequence under `key`.
    std::optional<string> Stored(kelcore::string::string_view key) const {
        return host->Find(guids, key);
    }
    void Store(kelcore::string::string_view key, kelcore::string::string_view value) {
        host->Put(guids, key, value);
    }

    std::shared_ptr<kelcore::threads::MainThreadQueue> queue;
    model::ProcessingGuids guids;
    std::shared_ptr<model::testing::FakeSequenceHost> host;
    std::shared_ptr<FakeNetworkMonitor> monitor;
    std::atomic<bool> installed{true};
    std::atomic<int> installedAsks{0};
    std::atomic<int> sequenceWrites{0};  // by the view model
    std::shared_ptr<ShareForReviewViewModel> viewModel;
    std::shared_ptr<utility::DataBinding> viewBinding;
    std::vector<ViewID> delivered;  // main thread
    string lastJobID;               // of AddJob
};

}  // namespace vantrokelui::viewmodel::testing
