// The process's one client of the service: holds the access token, the transport, the SDK's
// executor and the services (Accounts, Workspaces, Projects, Assets, ReviewLinks,
// TransferManager) that send typed requests. Made by Initialize and reached through Get(); held
// by shared pointer by whoever uses it, and by the services' pending work, so it outlives a
// ResetForTesting that happens while requests run. Every method: any thread.
//
// Tokens: every request carries "Authorization: Bearer <token>"; a request made before any
// token fails with kResultNotReady. When the service answers 401, the client asks for a new
// token through `tokenRefreshRequested` (once for all the requests refused together), waits for
// the next UpdateAccessToken (VantroConfig::GetTokenRefreshWait, 30 s) and sends the request
// again once; without a new token the 401 is the answer. Ahead of expiry (read from the token's
// `exp`, not verified) it asks the same way when less than min(60 s, a tenth of the token's
// life) remains. `tokenRefreshRequested` is called on the SDK's executor, never under a lock, with
// an empty string. No token is ever logged.
//
//   VantroClient::Initialize(VantroConfig(clientId), [](const std::string&) { FetchToken(); });
//   VantroClient::Get()->UpdateAccessToken(token);
//   VantroClient::Get()->GetAccounts()->GetCurrentUser({}).Then(executor, OnUser);
#pragma once

#include <functional>
#include <memory>
#include <string>

#include <vantrocommon/Response.h>
#include <vantrosdk/VantroConfig.h>

namespace vantrosdk {

class Accounts;
class Assets;
class Projects;
class ReviewLinks;
class TransferManager;
class Workspaces;

namespace detail {
class ClientCore;
}

class VantroClient {
public:
    /// Makes the process's client. Fails (and changes nothing) with kResultInvalidArgument
    /// while a client exists, or when the client id is empty. `tokenRefreshRequested` may be
    /// empty: a 401 is then answered at once and no expiry timer runs.
    static vantrocommon::Response Initialize(
        const VantroConfig& config, std::function<void(const std::string&)> tokenRefreshRequested);
    /// The client made by Initialize; null before it (and after ResetForTesting).
    static std::shared_ptr<VantroClient> Get();
    /// Forgets the client: running uploads are cancelled, the token callback is no longer
    /// called, and the next Initialize makes a new client. Requests in flight still complete.
    static void ResetForTesting();

    ~VantroClient();
    VantroClient(const VantroClient&) = delete;
    VantroClient& operator=(const VantroClient&) = delete;

    /// Replaces the access token for every later request (and for requests waiting after a
    /// 401). An empty token fails with kResultInvalidArgument and changes nothing.
    vantrocommon::Response UpdateAccessToken(const std::string& token);

    std::shared_ptr<Accounts> GetAccounts() const { return accounts; }
    std::shared_ptr<Workspaces> GetWorkspaces() const { return workspaces; }
    std::shared_ptr<Projects> GetProjects() const { return projects; }
    std::shared_ptr<Assets> GetAssets() const { return assets; }
    std::shared_ptr<ReviewLinks> GetReviewLinks() const { return reviewLinks; }
    std::shared_ptr<TransferManager> GetTransferManager() const { return transferManager; }

private:
    explicit VantroClient(std::shared_ptr<detail::ClientCore> core);

    std::shared_ptr<detail::ClientCore> core;
    std::shared_ptr<Accounts> accounts;
    std::shared_ptr<Workspaces> workspaces;
    std::shared_ptr<Projects> projects;
    std::shared_ptr<Assets> assets;
    std::shared_ptr<ReviewLinks> reviewLinks;
    std::shared_ptr<TransferManager> transferManager;
};

}  // namespace vantrosdk
