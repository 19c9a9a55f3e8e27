#include <vantrosdk/Accounts.h>

#include <utility>

#include "detail/Exchange.h"

namespace vantrosdk {

using detail::ClientCore;
using detail::Exchange;
using detail::Get;
using detail::ListOf;
using kelcore::async::Future;

Accounts::Accounts(std::shared_ptr<ClientCore> core) : core(std::move(core)) {}

Future<std::shared_ptr<GetCurrentUserResponse>> Accounts::GetCurrentUser(
    const GetCurrentUserRequest& request) {
    return Exchange<GetCurrentUserResponse>(core, Get(*core, "/v2/me", request),
                                            ClientCore::Retry::Policy, detail::ReadUser);
}

Future<std::shared_ptr<GetCurrentUserAccountListResponse>> Accounts::GetCurrentUserAccountList(
    const GetCurrentUserAccountListRequest& request) {
    return Exchange<GetCurrentUserAccountListResponse>(core, Get(*core, "/v2/accounts", request),
                                                       ClientCore::Retry::Policy,
                                                       ListOf(detail::ReadAccount));
}

Future<std::shared_ptr<GetAccountResponse>> Accounts::GetAccount(const GetAccountRequest& request) {
    return Exchange<GetAccountResponse>(
        core, Get(*core, "/v2/accounts/" + request.GetAccountId().AsString(), request),
        ClientCore::Retry::Policy, detail::ReadAccount);
}

}  // namespace vantrosdk
