// The answer to GetWorkspacesByAccountRequest: one page of the account's workspaces. Made by the
// SDK on its executor; immutable afterwards, any thread.
#pragma once

#include <utility>
#include <vector>

#include <vantrocommon/http/HeaderMap.h>
#include <vantrosdk/VantroResponse.h>
#include <vantrosdk/Workspace.h>

namespace vantrosdk {

class GetWorkspacesByAccountResponse : public VantroResponse {
public:
    GetWorkspacesByAccountResponse() = default;
    GetWorkspacesByAccountResponse(int httpStatusCode, vantrocommon::http::HeaderMap header,
                                   std::vector<Workspace> workspaces)
        : VantroResponse(httpStatusCode, std::move(header)), workspaces(std::move(workspaces)) {}

    /// The page's workspaces by name; empty when not successful.
    const std::vector<Workspace>& GetWorkspaceList() const { return workspaces; }

private:
    std::vector<Workspace> workspaces;
};

}  // namespace vantrosdk
