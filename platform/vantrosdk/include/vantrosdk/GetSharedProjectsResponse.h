// The answer to GetSharedProjectsRequest: one page of the account's projects shared with the user.
// Made by the SDK on its executor; immutable afterwards, any thread.
#pragma once

#include <utility>
#include <vector>

#include <vantrocommon/http/HeaderMap.h>
#include <vantrosdk/Project.h>
#include <vantrosdk/VantroResponse.h>

namespace vantrosdk {

class GetSharedProjectsResponse : public VantroResponse {
public:
    GetSharedProjectsResponse() = default;
    GetSharedProjectsResponse(int httpStatusCode, vantrocommon::http::HeaderMap header,
                              std::vector<Project> projects)
        : VantroResponse(httpStatusCode, std::move(header)), projects(std::move(projects)) {}

    /// The page's projects by name; empty when not successful.
    const std::vector<Project>& GetSharedProjectListObject() const { return projects; }

private:
    std::vector<Project> projects;
};

}  // namespace vantrosdk
