#include <vantrosdk/Projects.h>

#include <utility>

#include "detail/Exchange.h"

namespace vantrosdk {

using detail::ClientCore;
using detail::Exchange;
using detail::Get;
using detail::ListOf;
using kelcore::async::Future;

Projects::Projects(std::shared_ptr<ClientCore> core) : core(std::move(core)) {}

Future<std::shared_ptr<GetProjectsByWorkspaceResponse>> Projects::GetProjectsByWorkspace(
    const GetProjectsByWorkspaceRequest& request) {
    return Exchange<GetProjectsByWorkspaceResponse>(
        core, Get(*core, "/v2/teams/" + request.GetWorkspaceId().AsString() + "/projects", request),
        ClientCore::Retry::Policy, ListOf(detail::ReadProject));
}

Future<std::shared_ptr<GetSharedProjectsResponse>> Projects::GetSharedProjects(
    const GetSharedProjectsRequest& request) {
    return Exchange<GetSharedProjectsResponse>(
        core,
        Get(*core, "/v2/accounts/" + request.GetAccountId().AsString() + "/shared_projects",
            request),
        ClientCore::Retry::Policy, ListOf(detail::ReadProject));
}

}  // namespace vantrosdk
