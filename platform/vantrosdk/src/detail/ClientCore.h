// What every service of one VantroClient shares: the service's address, the transport, the
// SDK's executor, the retry policy and transfer options, and the access token with its refresh
// protocol. Owned by shared pointer by the client, its services and every exchange in flight,
// so it outlives a client that is reset while requests run. Any thread.
//
//   core->Send(request, detail::ClientCore::Retry::Policy)
//       .Then(core->Executor(), [](const Future<http::Reply>& reply) { ... });
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include <kelcore/async/Future.h>
#include <kelcore/async/Promise.h>
#include <kelcore/threads/AsyncExecutor.h>
#include <vantrocommon/Response.h>
#include <vantrocommon/RetryPolicy.h>
#include <vantrocommon/http/CancellationToken.h>
#include <vantrocommon/http/Reply.h>
#include <vantrocommon/http/Request.h>
#include <vantrocommon/http/Transport.h>

namespace vantrosdk::detail {

class TransferRegistry;

class ClientCore : public std::enable_shared_from_this<ClientCore> {
public:
    struct Settings {
        std::string apiBase;  ///< No trailing slash.
        std::shared_ptr<vantrocommon::http::Transport> transport;
        std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
        vantrocommon::RetryPolicy retryPolicy;
        std::uint64_t partSize = 0;
        int partsInFlight = 1;
        std::chrono::milliseconds tokenRefreshWait{30'000};
        std::function<void(const std::string&)> tokenRefreshRequested;
    };

    /// How a request is sent: once, or again under the retry policy after network failures and
    /// 5xx (never after a 429, which the caller's own rate protocol handles).
    enum class Retry { Once, Policy };

    explicit ClientCore(Settings settings);

    /// Any thread. Sends `request` with the current bearer token. On 401 it asks for a new token
    /// (once for every request refused with the same token), waits for it and sends again once;
    /// without one the 401 is the reply. Completes on the executor, never inline; fails with
    /// kResultNotReady when no token was ever given, or with the transport's code.
    kelcore::async::Future<vantrocommon::http::Reply> Send(
        vantrocommon::http::Request request, Retry retry,
        vantrocommon::http::CancellationToken cancel = vantrocommon::http::CancellationToken());

    /// Any thread. See VantroClient::UpdateAccessToken.
    vantrocommon::Response UpdateAccessToken(const std::string& token);

    /// Any thread. Cancels the running uploads, stops calling the refresh callback and lets
    /// waiting requests answer their 401 now. Other requests in flight go on.
    void Shutdown();

    /// The running uploads of this client.
    const std::shared_ptr<TransferRegistry>& Transfers() const { return transfers; }

    /// `apiBase` + `path` (which starts with '/').
    std::string Url(std::string_view path) const { return settings.apiBase + std::string(path); }
    const std::shared_ptr<kelcore::threads::AsyncExecutor>& Executor() const {
        return settings.executor;
    }
    const vantrocommon::RetryPolicy& Policy() const { return settings.retryPolicy; }
    std::uint64_t PartSize() const { return settings.partSize; }
    int PartsInFlight() const { return settings.partsInFlight; }

private:
    struct Token {
        std::string value;
        std::uint64_t generation = 0;
    };

    kelcore::async::Future<vantrocommon::http::Reply> SendWithToken(
        const vantrocommon::http::Request& request, const std::string& token, Retry retry,
        const vantrocommon::http::CancellationToken& cancel);
    /// A future of the token that follows `generation`: at once when it is already there,
    /// else after the refresh asked for now (or already asked for); empty when none comes in
    /// time or nobody can be asked.
    kelcore::async::Future<std::string> TokenAfter(std::uint64_t generation);
    /// Asks for a new token unless a request is already out. Call without the lock held.
    void RequestRefresh();
    void ScheduleExpiryRefresh(const std::string& token, std::uint64_t generation);

    const Settings settings;
    const std::shared_ptr<TransferRegistry> transfers;

    mutable std::mutex mutex;
    Token token;
    bool shutDown = false;
    std::function<void(const std::string&)> tokenRefreshRequested;
    // The refresh asked for and not yet answered; its number tells its time-out from a later
    // request's.
    std::shared_ptr<kelcore::async::Promise<std::string>> pendingRefresh;
    std::uint64_t refreshSerial = 0;
};

}  // namespace vantrosdk::detail
