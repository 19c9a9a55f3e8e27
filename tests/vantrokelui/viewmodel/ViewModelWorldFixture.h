// The ground of the view model's tests against the real vantro-server: ann's Studio / Editors /
// Alpha with a folder "Reviews" (CloudShareFixture), the test's thread as the main thread with a
// queue it pumps, the host's side of a share (TestShareHost: sequences, encoder, toasts), and the
// real view model installed over it, so that the pipeline writes into the view model instead of
// the host's stand-in properties. The connection monitor is one the test drives (online). Each
// test runs in its own process. The test's thread.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <boost/json.hpp>

#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>
#include <kelcore/utility/Guid.h>
#include <vantrokelui/model/ShareManager.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include "FakeNetworkMonitor.h"
#include "support/AwaitFuture.h"
#include "vantrokelui/support/CloudShareFixture.h"
#include "vantrokelui/support/TestShareHost.h"

namespace vantrokelui::viewmodel::testing {

class ViewModelWorldFixture : public vantrokeluitest::CloudShareFixture {
protected:
    using Guid = kelcore::utility::Guid;
    using string = kelcore::string::string;
    using ViewID = ShareForReviewViewID;

    static constexpr std::chrono::seconds kWaitLimit{120};  // a broken run's bound only

    void SetUp() override {
        CloudShareFixture::SetUp();
        kelcore::threads::SetMainThread();
        queue = std::make_shared<kelcore::threads::MainThreadQueue>();
        kelcore::threads::SetMainThreadDispatcher(queue);
        host = std::make_unique<model::testing::TestShareHost>(queue);
    }

    void TearDown() override {
        viewBinding.reset();
        viewModel.reset();
        host->Pump();
        host.reset();
        queue->RunUntilEmpty();
        kelcore::threads::SetMainThreadDispatcher(nullptr);
        CloudShareFixture::TearDown();
    }

    /// Starts the server, makes "Reviews" in Alpha, installs the host and then the view model
    /// (whose Create hands the pipeline the view model's properties in place of the host's),
    /// and opens the sequence "Cut 1". Nothing is signed in.
    void StartWorldWithViewModel() {
        StartWorld();
        const auto made =
            client.PostJson(Url("/v2/assets/" + root + "/children"),
                            boost::json::object{{"name", "Reviews"}, {"type", "folder"}},
                            testsupport::Bearer(Token()));
        ASSERT_EQ(made.status, 201) << made.body;
        folder = std::string(made.Json().at("id").as_string());

        host->Install();
        viewModel = ShareForReviewViewModel::Create();
        model::testing::FakeSequenceHost& sequences = host->Sequences();
        viewModel->SetAssetDataMethods(
            sequences.GetActiveSequenceFn(), sequences.GetSequenceValueFn(),
            sequences.SetSequenceValueFn(), sequences.ClearSequenceValueFn());
        viewModel->SetAssetProcessorInstalledMethod([this] {
            ++workflowRuns;
            if (!kelcore::threads::CurrentThreadIsMainThread()) {
                ++workflowRunsOffMainThread;
            }
            return true;
        });
        const std::shared_ptr<FakeNetworkMonitor> online = monitor;
        viewModel->SetNetworkConnectionMonitor([online] { return online; });
        model::SetEncoderPresets(model::testing::TestShareHost::Presets());
        viewBinding =
            viewModel->AddCurrentViewIDBinding([this](ViewID id) { delivered.push_back(id); });
        sequence = {Guid::CreateUnique(), Guid::CreateUnique()};
        host->OpenSequence(sequence, u"Cut 1");
        viewModel->SetActiveAssetName(u"Cut 1");
        queue->RunUntilEmpty();
        delivered.clear();
    }

    /// As StartWorldWithViewModel, then a stored token, an open that signs in quietly, and the
    /// folder "Reviews" committed in the picker: the panel shows the share screen.
    void StartSignedInWorld() {
        StartWorldWithViewModel();
        StoreToken();
        Open();
        ASSERT_TRUE(PumpUntil([&] {
            return View() == ViewID::ReviewInVantro && viewModel->GetUser()->GetID() != Guid();
        }));
        const auto reviews = AwaitFolder(Guid(folder));
        ASSERT_NE(reviews, nullptr);
        // The picker: the folder step, a row chosen, Commit.
        viewModel->SetCurrentViewID(ViewID::SelectFolder);
        viewModel->GetUser()->SetSelection(reviews);
        viewModel->LocationPickerSelectionCommitted();
        ASSERT_EQ(View(), ViewID::ReviewInVantro);
    }

    /// Opens the panel.
    void Open() { viewModel->StartShareForReviewPopup(); }

    /// The Share button of the share screen: the storage check, then with room the preset is
    /// stored and the share starts; over the limit the limit screen. The check answers on the
    /// back end's executor, and so does this.
    void PressShare() {
        const std::weak_ptr<ShareForReviewViewModel> weak = viewModel;
        viewModel->CheckStorageLimitOnSelectedAccount([weak](bool exceeded) {
            const auto self = weak.lock();
            if (!self) {
                return;
            }
            if (exceeded) {
                self->SetCurrentViewID(ShareForReviewViewID::StorageLimitExceeded);
            } else {
                self->WriteSelectedEncoderPresetToSequence();
                model::ProcessAssetForReview();
            }
        });
    }

    /// PressShare, then waits until the encoder has the job; its id (empty if none came).
    string ShareUntilQueued() {
        const std::size_t before = host->Encoder().JobCount();
        PressShare();
        if (!PumpUntil([&] { return host->Encoder().JobCount() > before; })) {
            return {};
        }
        return host->Encoder().Jobs().back().jobID;
    }

    /// The folder `id` once the tree holds it; fetches each folder's children on the way down,
    /// as opening its row in the picker does. Null when it never came.
    std::shared_ptr<VantroFolder> AwaitFolder(const Guid& id) {
        std::shared_ptr<VantroFolder> found;
        PumpUntil([&] {
            const auto user = viewModel->GetUser();
            found = std::dynamic_pointer_cast<VantroFolder>(user->FindNode(id));
            if (found) {
                return true;
            }
            FetchFolders(user);
            return false;
        });
        return found;
    }

    /// Pumps the main thread until `done` holds. Some conditions are announced by nothing that
    /// reaches the main thread (a job leaving the pipeline's map), so between tasks the
    /// condition is also asked every few milliseconds.
    bool PumpUntil(const std::function<bool()>& done) {
        const auto deadline = std::chrono::steady_clock::now() + kWaitLimit;
        while (!queue->PumpUntil(done, std::chrono::milliseconds(5))) {
            if (std::chrono::steady_clock::now() >= deadline) {
                return false;
            }
        }
        return true;
    }
    /// Delivers what is queued, then forgets the screens recorded so far.
    void ClearDelivered() {
        Pump();
        delivered.clear();
    }
    std::size_t Pump() { return queue->RunUntilEmpty(); }

    ViewID View() const { return viewModel->GetCurrentViewID(); }

    /// A token of ann's own for the test's API calls.
    std::string Token() {
        if (apiToken.empty()) {
            apiToken = SignIn(kUser, kPassword).access;
        }
        return apiToken;
    }

    std::shared_ptr<kelcore::threads::MainThreadQueue> queue;
    std::unique_ptr<model::testing::TestShareHost> host;
    std::shared_ptr<FakeNetworkMonitor> monitor = std::make_shared<FakeNetworkMonitor>(true);
    std::shared_ptr<ShareForReviewViewModel> viewModel;
    std::shared_ptr<utility::DataBinding> viewBinding;
    std::vector<ViewID> delivered;     // main thread
    std::atomic<int> workflowRuns{0};  // opening decisions taken
    std::atomic<int> workflowRunsOffMainThread{0};
    model::ProcessingGuids sequence;
    std::string folder;
    std::string apiToken;

private:
    // Asks every folder that has not been asked yet for its children.
    static void FetchFolders(const std::shared_ptr<VantroNode>& node) {
        if (const auto asFolder = std::dynamic_pointer_cast<VantroFolder>(node)) {
            if (asFolder->GetFetchChildrenState() == FetchChildrenState::NotFetched) {
                asFolder->FetchChildren();
            }
        }
        for (const auto& child : node->GetChildren()) {
            FetchFolders(child);
        }
    }
};

}  // namespace vantrokelui::viewmodel::testing
