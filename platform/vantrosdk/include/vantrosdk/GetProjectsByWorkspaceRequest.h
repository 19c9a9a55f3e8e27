// Asks for the projects of a workspace (GET /v2/teams/{id}/projects, paged). A plain value; any
// thread.
//
//   client->GetProjects()->GetProjectsByWorkspace(GetProjectsByWorkspaceRequest(workspaceId)).Then(executor,
//   OnAnswer);
#pragma once

#include <vantrocommon/Guid.h>
#include <vantrosdk/VantroRequest.h>

namespace vantrosdk {

class GetProjectsByWorkspaceRequest : public VantroRequest {
public:
    explicit GetProjectsByWorkspaceRequest(vantrocommon::Guid workspaceId)
        : workspaceId(workspaceId) {}

    const vantrocommon::Guid& GetWorkspaceId() const { return workspaceId; }

private:
    vantrocommon::Guid workspaceId;
};

}  // namespace vantrosdk
