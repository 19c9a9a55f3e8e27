#include <vantrokelui/model/connector/FetchWorkspaceChildrenQueue.h>

#include <utility>

#include <vantrocommon/Guid.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrosdk/Projects.h>

namespace vantrokelui::model::VantroConnectorIntegration {

FetchWorkspaceChildrenQueue::FetchWorkspaceChildrenQueue() = default;

FetchWorkspaceChildrenQueue::FetchWorkspaceChildrenQueue(
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor)
    : FetchChildrenQueue(std::move(executor)) {}

FetchWorkspaceChildrenQueue::~FetchWorkspaceChildrenQueue() = default;

kelcore::async::Future<void> FetchWorkspaceChildrenQueue::IssueRequest(
    std::shared_ptr<VantroNode> node, int page, ResponseHandler handler) {
    const std::shared_ptr<vantrosdk::VantroClient> client = GetClient();
    if (!client) {
        return MissingClientFailure();
    }
    vantrosdk::GetProjectsByWorkspaceRequest request{
        vantrocommon::Guid(node->GetID().AsStdString())};
    request.SetPageNumber(page);
    return AttachHandler(client->GetProjects()->GetProjectsByWorkspace(request),
                         std::move(handler));
}

const std::vector<vantrosdk::Project>& FetchWorkspaceChildrenQueue::ExtractChildren(
    const std::shared_ptr<VantroNode>& /*node*/,
    std::shared_ptr<vantrosdk::GetProjectsByWorkspaceResponse> response) {
    return response->GetProjectList();
}

}  // namespace vantrokelui::model::VantroConnectorIntegration
