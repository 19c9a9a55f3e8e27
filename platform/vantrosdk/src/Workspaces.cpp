#include <vantrosdk/Workspaces.h>

#include <utility>

#include "detail/Exchange.h"

namespace vantrosdk {

using detail::ClientCore;
using detail::Exchange;
using detail::Get;
using detail::ListOf;
using kelcore::async::Future;

Workspaces::Workspaces(std::shared_ptr<ClientCore> core) : core(std::move(core)) {}

Future<std::shared_ptr<GetWorkspacesByAccountResponse>> Workspaces::GetWorkspacesByAccount(
    const GetWorkspacesByAccountRequest& request) {
    return Exchange<GetWorkspacesByAccountResponse>(
        core, Get(*core, "/v2/accounts/" + request.GetAccountId().AsString() + "/teams", request),
        ClientCore::Retry::Policy, ListOf(detail::ReadWorkspace));
}

}  // namespace vantrosdk
