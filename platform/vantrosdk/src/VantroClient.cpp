#include <vantrosdk/VantroClient.h>

#include <mutex>
#include <utility>

#include <kelcore/threads/Executors.h>
#include <vantrocommon/ResultCodes.h>
#include <vantrocommon/http/CurlTransport.h>
#include <vantrosdk/Accounts.h>
#include <vantrosdk/Assets.h>
#include <vantrosdk/Projects.h>
#include <vantrosdk/ReviewLinks.h>
#include <vantrosdk/TransferManager.h>
#include <vantrosdk/Workspaces.h>

#include "detail/ClientCore.h"

namespace vantrosdk {

namespace {

std::mutex sClientMutex;
std::shared_ptr<VantroClient> sClient;

}  // namespace

vantrocommon::Response VantroClient::Initialize(
    const VantroConfig& config, std::function<void(const std::string&)> tokenRefreshRequested) {
    std::lock_guard lock(sClientMutex);
    if (sClient) {
        return vantrocommon::Response(vantrocommon::kResultInvalidArgument,
                                      "the client is initialised already");
    }
    if (config.GetClientId().empty()) {
        return vantrocommon::Response(vantrocommon::kResultInvalidArgument,
                                      "the client id is empty");
    }
    vantrocommon::ServiceEndpoint endpoint =
        config.GetEndpoint() ? *config.GetEndpoint()
                             : vantrocommon::ServiceEndpoint::Resolve(config.GetEnvironment());
    while (!endpoint.apiBase.empty() && endpoint.apiBase.back() == '/') {
        endpoint.apiBase.pop_back();
    }

    detail::ClientCore::Settings settings;
    settings.apiBase = endpoint.apiBase;
    settings.executor =
        config.GetExecutor() ? config.GetExecutor() : kelcore::threads::GetIOBoundExecutor();
    settings.transport = config.GetTransport();
    if (!settings.transport) {
        vantrocommon::http::CurlTransport::Options options;
        options.caFile = endpoint.caFile;
        options.executor = settings.executor;
        settings.transport = vantrocommon::http::CurlTransport::Create(std::move(options));
    }
    settings.retryPolicy = config.GetRetryPolicy();
    settings.partSize = config.GetTransferPartSize();
    settings.partsInFlight = config.GetTransferPartsInFlight();
    settings.tokenRefreshWait = config.GetTokenRefreshWait();
    settings.tokenRefreshRequested = std::move(tokenRefreshRequested);

    sClient = std::shared_ptr<VantroClient>(
        new VantroClient(std::make_shared<detail::ClientCore>(std::move(settings))));
    return vantrocommon::Response::Success();
}

std::shared_ptr<VantroClient> VantroClient::Get() {
    std::lock_guard lock(sClientMutex);
    return sClient;
}

void VantroClient::ResetForTesting() {
    std::shared_ptr<VantroClient> client;
    {
        std::lock_guard lock(sClientMutex);
        client = std::move(sClient);
        sClient.reset();
    }
    if (client) {
        client->core->Shutdown();
    }
}

VantroClient::VantroClient(std::shared_ptr<detail::ClientCore> core)
    : core(std::move(core)),
      accounts(std::make_shared<Accounts>(this->core)),
      workspaces(std::make_shared<Workspaces>(this->core)),
      projects(std::make_shared<Projects>(this->core)),
      assets(std::make_shared<Assets>(this->core)),
      reviewLinks(std::make_shared<ReviewLinks>(this->core)),
      transferManager(std::make_shared<TransferManager>(this->core)) {}

VantroClient::~VantroClient() = default;

vantrocommon::Response VantroClient::UpdateAccessToken(const std::string& token) {
    return core->UpdateAccessToken(token);
}

}  // namespace vantrosdk
