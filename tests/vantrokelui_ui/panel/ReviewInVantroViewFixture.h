// The ground of the share screen's tests, over the panel's common fixture: a connection monitor
// that always reports online, the panel open on the share screen, three presets, and a stand-in
// for the service that answers the storage check with the figures a test sets (the SDK's real
// client over a transport without a network). The test's thread, except where a member says
// otherwise.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include <kelcore/async/Promise.h>
#include <kelcore/threads/Executors.h>
#include <vantrocommon/RetryPolicy.h>
#include <vantrocommon/http/Transport.h>
#include <vantrokelui/model/NetworkConnectionMonitorBase.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrokelui/view/ReviewInVantroView.h>
#include <vantrosdk/VantroClient.h>
#include <vantrosdk/VantroConfig.h>

#include "support/qt/PanelFixture.h"

namespace vantrokelui::view::testing {

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

class ReviewInVantroViewFixture : public PanelFixture {
protected:
    ReviewInVantroViewFixture() : PanelFixture(200) {}

    void ConfigureViewModel() override {
        viewModel->SetNetworkConnectionMonitor(
            [] { return std::make_shared<SteadyOnlineMonitor>(); });
        // The panel is open on this screen, as the screen manager would show it.
        viewModel->SetCurrentViewID(ViewID::ReviewInVantro);
    }

    void TearDown() override {
        if (view) {
            view->GetPresetPopup()->HideMenu();
            root->ChildRemove(view);
            view.reset();
        }
        PanelFixture::TearDown();
    }

    void ReleaseServices() override {
        if (transport) {
            model::VantroConnectorIntegration::ClearClient();
            vantrosdk::VantroClient::ResetForTesting();
        }
    }

    /// The screen, made now, in the window at its recommended size, with every delivery of its
    /// bindings done.
    boost::intrusive_ptr<ReviewInVantroView> MakeView() {
        view.reset(new ReviewInVantroView(viewModel));
        PutInWindow(view);
        Pump();
        return view;
    }

    /// Gives the view model `tree`'s user with its folder chosen.
    void ChooseFolder(const LocalTree& tree) {
        viewModel->SetUser(tree.user);
        tree.user->SetSelection(tree.folder);
        Pump();
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
        StoreShare(tree.folder->GetID(), tree.project->GetID(), u"http://service.invalid/r/abc");
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

    std::shared_ptr<AccountStorageTransport> transport;
    boost::intrusive_ptr<ReviewInVantroView> view;
};

}  // namespace vantrokelui::view::testing
