// The ground of the share screen's tests: the test's thread as the main thread (pumped), an
// in-memory host sequence injected into the view model and the share pipeline, an encoder that
// records what it is asked to render, a connection monitor that always reports online, a window
// with a drawing supplier for the screen, a cloud location tree made by hand, and a stand-in for
// the service that answers the storage check with the figures a test sets (the SDK's real client
// over a transport without a network). The test's thread, except where a member says otherwise.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <QTest>
#include <QWidget>

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include <kelcore/async/Promise.h>
#include <kelcore/string/String.h>
#include <kelcore/threads/Executors.h>
#include <kelcore/utility/Guid.h>
#include <kelui/ui/UI_NodeManager.h>
#include <vantrocommon/RetryPolicy.h>
#include <vantrocommon/http/Transport.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/NetworkConnectionMonitorBase.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/view/ReviewInVantroView.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>
#include <vantrosdk/VantroClient.h>
#include <vantrosdk/VantroConfig.h>

#include "support/qt/QtMainThreadFixture.h"
#include "vantrokelui/support/FakeSequenceHost.h"

namespace vantrokelui::view::testing {

using kelcore::string::string;
using ViewID = ShareForReviewViewID;

/// A hand-made location tree: user "ann" / account / workspace / project / root folder /
/// folder. Nothing in it talks to a service.
struct LocalTree {
    std::shared_ptr<VantroUser> user;
    std::shared_ptr<VantroAccount> account;
    std::shared_ptr<VantroWorkspace> workspace;
    std::shared_ptr<VantroProject> project;
    std::shared_ptr<VantroFolder> root;
    std::shared_ptr<VantroFolder> folder;

    static LocalTree Make(const string& accountName = u"Studio",
                          const string& workspaceName = u"Editors",
                          const string& projectName = u"Alpha",
                          const string& folderName = u"Reviews") {
        LocalTree tree;
        tree.user = std::make_shared<VantroUser>();
        tree.user->SetID(kelcore::utility::Guid::CreateUnique());
        tree.user->SetName(u"ann");
        tree.account = std::make_shared<VantroAccount>(tree.user);
        tree.account->SetID(kelcore::utility::Guid::CreateUnique());
        tree.account->SetName(accountName);
        tree.workspace = std::make_shared<VantroWorkspace>(tree.account);
        tree.workspace->SetID(kelcore::utility::Guid::CreateUnique());
        tree.workspace->SetName(workspaceName);
        tree.project = std::make_shared<VantroProject>(tree.workspace);
        tree.project->SetID(kelcore::utility::Guid::CreateUnique());
        tree.project->SetName(projectName);
        tree.root = std::make_shared<VantroFolder>(tree.project);
        tree.root->SetID(kelcore::utility::Guid::CreateUnique());
        tree.root->SetName(u"root");
        tree.folder = std::make_shared<VantroFolder>(tree.root);
        tree.folder->SetID(kelcore::utility::Guid::CreateUnique());
        tree.folder->SetName(folderName);
        tree.root->SetFolders({tree.folder});
        tree.project->SetRootFolder(tree.root);
        tree.workspace->SetProjects({tree.project});
        tree.account->SetWorkspaces({tree.workspace});
        tree.user->SetAccounts({tree.account});
        return tree;
    }
};

/// Always online; reports no change.
class SteadyOnlineMonitor final : public model::NetworkConnectionMonitorBase {
public:
    bool IsConnected() override { return true; }
    void SetConnectionChangedCallback(std::function<void(bool)>) override {}
};

/// Answers every account request with one account that has `storageUsed` bytes of a plan's
/// `storageLimit`, on the executor, as the network would; logs the requested URLs. Any thread.
class AccountStorageTransport final : public vantrocommon::http::Transport {
public:
    AccountStorageTransport(std::shared_ptr<kelcore::threads::AsyncExecutor> executor,
                            std::uint64_t storageUsed, std::uint64_t storageLimit)
        : executor(std::move(executor)), storageUsed(storageUsed), storageLimit(storageLimit) {}

    kelcore::async::Future<vantrocommon::http::Reply> Send(
        vantrocommon::http::Request request, vantrocommon::http::CancellationToken) override {
        {
            const std::lock_guard lock(mutex);
            urls.push_back(request.url);
        }
        auto promise =
            std::make_shared<kelcore::async::Promise<vantrocommon::http::Reply>>(executor);
        auto future = promise->GetFuture();
        const std::string marker = "/v2/accounts/";
        const std::size_t at = request.url.find(marker);
        vantrocommon::http::Reply reply;
        if (at == std::string::npos) {
            reply.status = 404;
            reply.body = "{}";
        } else {
            reply.status = 200;
            reply.body = boost::json::serialize(
                boost::json::object{{"id", request.url.substr(at + marker.size())},
                                    {"name", "Studio"},
                                    {"member", true},
                                    {"storage_used", storageUsed},
                                    {"storage_limit", storageLimit}});
        }
        executor->Post([promise, reply] { promise->SetValue(reply); });
        return future;
    }

    std::vector<std::string> Urls() const {
        const std::lock_guard lock(mutex);
        return urls;
    }

private:
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    std::uint64_t storageUsed;
    std::uint64_t storageLimit;
    mutable std::mutex mutex;
    std::vector<std::string> urls;
};

/// One call of the host's render function. Any thread.
struct RenderRequest {
    string outputFilePath;
    string jobID;
    string presetPath;
};

class ReviewInVantroViewFixture : public testsupport::QtMainThreadFixture {
protected:
    void SetUp() override {
        QtMainThreadFixture::SetUp();
        guids = {kelcore::utility::Guid::CreateUnique(), kelcore::utility::Guid::CreateUnique()};
        host = model::testing::FakeSequenceHost::Create();
        host->SetActive(guids);
        model::SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                   host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        auto log = renders;
        model::SetAssetProcessingMethod(
            [log](const string& output, const string& jobID, const string& presetPath) {
                const std::lock_guard lock(log->mutex);
                log->requests.push_back({output, jobID, presetPath});
            },
            [](const string&) {});
        viewModel = viewmodel::ShareForReviewViewModel::Create();
        viewModel->SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                       host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        viewModel->SetNetworkConnectionMonitor(
            [] { return std::make_shared<SteadyOnlineMonitor>(); });
        viewModel->SetActiveAssetName(u"Cut 1");
        // The panel is open on this screen, as the screen manager would show it.
        viewModel->SetCurrentViewID(ViewID::ReviewInVantro);

        root->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
        root->GetWidget()->setGeometry(100, 100, 340, 200);
        root->UI_Show(true);
        root->GetWidget()->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(root->GetWidget()));
        Pump();
    }

    void TearDown() override {
        if (view) {
            view->GetPresetPopup()->HideMenu();
            root->ChildRemove(view);
            view.reset();
        }
        root.reset();
        viewModel.reset();
        Pump();
        if (transport) {
            model::VantroConnectorIntegration::ClearClient();
            vantrosdk::VantroClient::ResetForTesting();
        }
        QtMainThreadFixture::TearDown();
    }

    /// The screen, made now, in the window at its recommended size, with every delivery of its
    /// bindings done.
    boost::intrusive_ptr<ReviewInVantroView> MakeView() {
        view.reset(new ReviewInVantroView(viewModel));
        root->ChildPushBack(view);
        Pump();
        const auto size = sharedui::GetRecommendedSize(view);
        view->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
        Pump();
        return view;
    }

    /// Gives the view model `tree`'s user with its folder chosen.
    void ChooseFolder(const LocalTree& tree) {
        viewModel->SetUser(tree.user);
        tree.user->SetSelection(tree.folder);
        Pump();
    }

    static std::shared_ptr<EncoderPresetModel> Preset(const string& name, const string& path,
                                                      const string& extension = u"mp4") {
        auto preset = EncoderPresetModel::Create();
        preset->SetPresetName(name);
        preset->SetPresetPath(path);
        preset->SetExtension(extension);
        return preset;
    }

    /// Three presets, the first selected (the view model's rule).
    utility::SharedPtrVector<EncoderPresetModel> SetThreePresets() {
        utility::SharedPtrVector<EncoderPresetModel> presets{
            Preset(u"H.264 Match Source", u"/presets/h264-match.epr"),
            Preset(u"H.264 1080p", u"/presets/h264-1080.epr"),
            Preset(u"ProRes 422 Proxy", u"/presets/prores-proxy.epr", u"mov")};
        viewModel->SetEncoderPresets(presets);
        return presets;
    }

    /// What a share already made stores with the sequence: folder, its project, and the link,
    /// so that a new share goes straight to the encoder.
    void StoreEarlierShare(const LocalTree& tree) {
        const auto set = host->SetSequenceValueFn();
        model::SetSequenceGuid(set, guids.projectGuid, guids.sequenceGuid,
                               model::kUploadFolderGuidKey, tree.folder->GetID());
        model::SetSequenceGuid(set, guids.projectGuid, guids.sequenceGuid,
                               model::kUploadFolderParentProjGuidKey, tree.project->GetID());
        model::SetSequenceGuid(set, guids.projectGuid, guids.sequenceGuid,
                               model::kReviewLinkGuidKey, kelcore::utility::Guid::CreateUnique());
        model::SetSequenceString(set, guids.projectGuid, guids.sequenceGuid,
                                 model::kReviewLinkURLKey, u"http://service.invalid/r/abc");
    }

    /// The SDK's client over a service whose account has `storageUsed` of `storageLimit`,
    /// handed to the back end as a sign-in would.
    void SignInWithStorage(std::uint64_t storageUsed, std::uint64_t storageLimit) {
        const auto executor = kelcore::threads::GetIOBoundExecutor();
        transport = std::make_shared<AccountStorageTransport>(executor, storageUsed, storageLimit);
        vantrosdk::VantroConfig config("vantrokelui-desktop");
        config.SetEndpoint({.apiBase = "http://service.invalid"});
        config.SetTransport(transport);
        config.SetExecutor(executor);
        vantrocommon::RetryPolicy once;
        once.maxAttempts = 1;
        config.SetRetryPolicy(once);
        ASSERT_TRUE(vantrosdk::VantroClient::Initialize(config, {}).IsSuccess());
        const auto client = vantrosdk::VantroClient::Get();
        ASSERT_NE(client, nullptr);
        ASSERT_TRUE(client->UpdateAccessToken("test-token").IsSuccess());
        model::VantroConnectorIntegration::SetClient(client);
    }

    std::vector<RenderRequest> Renders() const {
        const std::lock_guard lock(renders->mutex);
        return renders->requests;
    }

    std::optional<string> Stored(kelcore::string::string_view key) const {
        return host->Find(guids, key);
    }

    ViewID View() const { return viewModel->GetCurrentViewID(); }

    struct RenderLog {
        std::mutex mutex;
        std::vector<RenderRequest> requests;
    };

    model::ProcessingGuids guids;
    std::shared_ptr<model::testing::FakeSequenceHost> host;
    std::shared_ptr<RenderLog> renders = std::make_shared<RenderLog>();
    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
    std::shared_ptr<AccountStorageTransport> transport;
    boost::intrusive_ptr<kelui::ui::UI_SubView> root{new kelui::ui::UI_SubView};
    boost::intrusive_ptr<ReviewInVantroView> view;
};

}  // namespace vantrokelui::view::testing
