// Projects of a workspace, and projects of an account shared with the user. Held by
// VantroClient and by shared pointer by callers. Any thread; futures complete on the SDK's
// executor with a response for any status, as Accounts.h says.
#pragma once

#include <memory>

#include <kelcore/async/Future.h>
#include <vantrosdk/GetProjectsByWorkspaceRequest.h>
#include <vantrosdk/GetProjectsByWorkspaceResponse.h>
#include <vantrosdk/GetSharedProjectsRequest.h>
#include <vantrosdk/GetSharedProjectsResponse.h>

namespace vantrosdk {

namespace detail {
class ClientCore;
}

class Projects {
public:
    /// Made by VantroClient around its core.
    explicit Projects(std::shared_ptr<detail::ClientCore> core);

    /// GET /v2/teams/{id}/projects, the request's page.
    kelcore::async::Future<std::shared_ptr<GetProjectsByWorkspaceResponse>> GetProjectsByWorkspace(
        const GetProjectsByWorkspaceRequest& request);
    /// GET /v2/accounts/{id}/shared_projects, the request's page.
    kelcore::async::Future<std::shared_ptr<GetSharedProjectsResponse>> GetSharedProjects(
        const GetSharedProjectsRequest& request);

private:
    std::shared_ptr<detail::ClientCore> core;
};

}  // namespace vantrosdk
