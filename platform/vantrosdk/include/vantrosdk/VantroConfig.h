// How VantroClient::Initialize sets the client up: the application's client id, which service
// (and where, when overridden), the transport and executor to use instead of the defaults (for
// tests), the retry policy and the transfer options. A plain value; built by the caller on any
// thread, copied by Initialize.
//
//   VantroConfig config("vantrokelui-desktop");
//   config.SetEndpoint({.apiBase = server.Url("")});
//   VantroClient::Initialize(config, OnTokenRefreshRequested);
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <kelcore/threads/AsyncExecutor.h>
#include <vantrocommon/RetryPolicy.h>
#include <vantrocommon/ServiceEndpoint.h>
#include <vantrocommon/http/Transport.h>
#include <vantrosdk/EnvironmentType.h>

namespace vantrosdk {

class VantroConfig {
public:
    static constexpr std::uint64_t kDefaultPartSize = 8 * 1024 * 1024;
    static constexpr int kDefaultPartsInFlight = 4;

    explicit VantroConfig(std::string clientId) : clientId(std::move(clientId)) {}

    const std::string& GetClientId() const { return clientId; }

    /// The service to talk to; used to resolve the endpoint when none is set.
    void SetEnvironment(EnvironmentType environment) { this->environment = environment; }
    EnvironmentType GetEnvironment() const { return environment; }

    /// Where the service is, instead of vantrocommon::ServiceEndpoint::Resolve(environment) at
    /// Initialize.
    void SetEndpoint(vantrocommon::ServiceEndpoint endpoint) {
        this->endpoint = std::move(endpoint);
    }
    /// Empty unless SetEndpoint was called.
    const std::optional<vantrocommon::ServiceEndpoint>& GetEndpoint() const { return endpoint; }

    /// The transport every request goes through, instead of a CurlTransport made at Initialize
    /// (which trusts the endpoint's CA file and completes on the SDK's executor). Null restores
    /// the default.
    void SetTransport(std::shared_ptr<vantrocommon::http::Transport> transport) {
        this->transport = std::move(transport);
    }
    const std::shared_ptr<vantrocommon::http::Transport>& GetTransport() const { return transport; }

    /// The SDK's executor, where every future of the SDK completes and its timers run, instead
    /// of kelcore::threads::GetIOBoundExecutor() as it is at Initialize. Null restores the
    /// default.
    void SetExecutor(std::shared_ptr<kelcore::threads::AsyncExecutor> executor) {
        this->executor = std::move(executor);
    }
    const std::shared_ptr<kelcore::threads::AsyncExecutor>& GetExecutor() const { return executor; }

    /// The one retry policy: GETs, adding to review links and upload parts follow it. Its
    /// retryTooManyRequests is ignored: a 429 is always the caller's to handle.
    void SetRetryPolicy(vantrocommon::RetryPolicy retryPolicy) { this->retryPolicy = retryPolicy; }
    const vantrocommon::RetryPolicy& GetRetryPolicy() const { return retryPolicy; }

    /// The size of an upload's parts (8 MiB by default). The service accepts 5 MiB to 1 GiB
    /// and at most 10000 parts a file, so the size used is clamped to that range and grown
    /// for files that would otherwise need more parts.
    void SetTransferPartSize(std::uint64_t partSize) { this->partSize = partSize; }
    std::uint64_t GetTransferPartSize() const { return partSize; }

    /// How many parts of one upload are sent at once (4 by default; at least 1 is used).
    void SetTransferPartsInFlight(int partsInFlight) { this->partsInFlight = partsInFlight; }
    int GetTransferPartsInFlight() const { return partsInFlight; }

    /// How long a request refused with 401 waits for UpdateAccessToken after the client asked
    /// for a new token (30 s on the executor's clock by default); then the 401 is answered.
    void SetTokenRefreshWait(std::chrono::milliseconds wait) { tokenRefreshWait = wait; }
    std::chrono::milliseconds GetTokenRefreshWait() const { return tokenRefreshWait; }

private:
    std::string clientId;
    EnvironmentType environment = EnvironmentType::Configured;
    std::optional<vantrocommon::ServiceEndpoint> endpoint;
    std::shared_ptr<vantrocommon::http::Transport> transport;
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    vantrocommon::RetryPolicy retryPolicy;
    std::uint64_t partSize = kDefaultPartSize;
    int partsInFlight = kDefaultPartsInFlight;
    std::chrono::milliseconds tokenRefreshWait{30'000};
};

}  // namespace vantrosdk
