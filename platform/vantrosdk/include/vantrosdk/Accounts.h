// The user and their accounts. Held by VantroClient (one per client) and by shared pointer by
// callers. Every method: any thread; returns at once, and its future completes on the SDK's
// executor, never inline.
//
// Futures of every service hold the typed response for ANY status the service answered (404,
// 429 and 500 are responses with IsSuccessful false, their status and headers). They fail only
// when no answer came after the retry policy (the transport's code, e.g. kResultNetworkFailure),
// when a successful answer is not JSON (kResultBadResponse), or before any token
// (kResultNotReady). GETs retry network failures and 5xx under the client's RetryPolicy; a 429
// is never retried here: it goes to the caller, whose rate-limit queue reads its headers.
//
//   client->GetAccounts()->GetCurrentUser({}).Then(executor, [](const auto& answer) {
//       if (ResultOf(answer) == 0 && answer.Get()->IsSuccessful()) Show(answer.Get()->...); });
#pragma once

#include <memory>

#include <kelcore/async/Future.h>
#include <vantrosdk/GetAccountRequest.h>
#include <vantrosdk/GetAccountResponse.h>
#include <vantrosdk/GetCurrentUserAccountListRequest.h>
#include <vantrosdk/GetCurrentUserAccountListResponse.h>
#include <vantrosdk/GetCurrentUserRequest.h>
#include <vantrosdk/GetCurrentUserResponse.h>

namespace vantrosdk {

namespace detail {
class ClientCore;
}

class Accounts {
public:
    /// Made by VantroClient around its core.
    explicit Accounts(std::shared_ptr<detail::ClientCore> core);

    /// GET /v2/me.
    kelcore::async::Future<std::shared_ptr<GetCurrentUserResponse>> GetCurrentUser(
        const GetCurrentUserRequest& request);
    /// GET /v2/accounts, the request's page.
    kelcore::async::Future<std::shared_ptr<GetCurrentUserAccountListResponse>>
    GetCurrentUserAccountList(const GetCurrentUserAccountListRequest& request);
    /// GET /v2/accounts/{id}.
    kelcore::async::Future<std::shared_ptr<GetAccountResponse>> GetAccount(
        const GetAccountRequest& request);

private:
    std::shared_ptr<detail::ClientCore> core;
};

}  // namespace vantrosdk
