// The workspaces (the service's teams) of an account. Held by VantroClient and by shared
// pointer by callers. Any thread; futures complete on the SDK's executor with a response for
// any status, as Accounts.h says.
#pragma once

#include <memory>

#include <kelcore/async/Future.h>
#include <vantrosdk/GetWorkspacesByAccountRequest.h>
#include <vantrosdk/GetWorkspacesByAccountResponse.h>

namespace vantrosdk {

namespace detail {
class ClientCore;
}

class Workspaces {
public:
    /// Made by VantroClient around its core.
    explicit Workspaces(std::shared_ptr<detail::ClientCore> core);

    /// GET /v2/accounts/{id}/teams, the request's page.
    kelcore::async::Future<std::shared_ptr<GetWorkspacesByAccountResponse>> GetWorkspacesByAccount(
        const GetWorkspacesByAccountRequest& request);

private:
    std::shared_ptr<detail::ClientCore> core;
};

}  // namespace vantrosdk
