// Creates a review link in a project (POST /v2/projects/{id}/review_links). Not retried: a
// second try could make a second link. A plain value; any thread.
//
//   client->GetReviewLinks()->CreateReviewLink(CreateReviewLinkRequest(project, "Cut 3"))
//       .Then(executor, OnCreated);
#pragma once

#include <string>
#include <utility>

#include <vantrocommon/Guid.h>
#include <vantrosdk/VantroRequest.h>

namespace vantrosdk {

class CreateReviewLinkRequest : public VantroRequest {
public:
    /// `name`: 1 to 255 bytes of UTF-8 without control characters (the service checks).
    CreateReviewLinkRequest(vantrocommon::Guid projectId, std::string name)
        : projectId(projectId), name(std::move(name)) {}

    const vantrocommon::Guid& GetProjectId() const { return projectId; }
    const std::string& GetName() const { return name; }

private:
    vantrocommon::Guid projectId;
    std::string name;
};

}  // namespace vantrosdk
