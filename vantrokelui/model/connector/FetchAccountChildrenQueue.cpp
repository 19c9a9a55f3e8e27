#include <vantrokelui/model/connector/FetchAccountChildrenQueue.h>

#include <utility>

#include <kelcore/async/Executors.h>
#include <kelcore/config/Localizer.h>
#include <vantrocommon/Guid.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrokelui/model/connector/VantroSdkProject.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrosdk/GetSharedProjectsRequest.h>
#include <vantrosdk/Projects.h>
#include <vantrosdk/Workspaces.h>

namespace vantrokelui::model::VantroConnectorIntegration {

FetchAccountChildrenQueue::FetchAccountChildrenQueue() = default;

FetchAccountChildrenQueue::FetchAccountChildrenQueue(
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor)
    : FetchChildrenQueue(std::move(executor)) {}

FetchAccountChildrenQueue::~FetchAccountChildrenQueue() = default;

kelcore::async::Future<void> FetchAccountChildrenQueue::IssueRequest(
    std::shared_ptr<VantroNode> node, int page, ResponseHandler handler) {
    const std::shared_ptr<vantrosdk::VantroClient> client = GetClient();
    if (!client) {
        return MissingClientFailure();
    }
    vantrosdk::GetWorkspacesByAccountRequest request{
        vantrocommon::Guid(node->GetID().AsStdString())};
    request.SetPageNumber(page);
    return AttachHandler(client->GetWorkspaces()->GetWorkspacesByAccount(request),
                         std::move(handler));
}

const std::vector<vantrosdk::Workspace>& FetchAccountChildrenQueue::ExtractChildren(
    const std::shared_ptr<VantroNode>& node,
    std::shared_ptr<vantrosdk::GetWorkspacesByAccountResponse> response) {
    const std::vector<vantrosdk::Workspace>& workspaces = response->GetWorkspaceList();
    if (workspaces.empty()) {
        // No workspace of the user's own: the account may still hold projects shared with them.
        FetchSharedProjects(node);
    }
    return workspaces;
}

void FetchAccountChildrenQueue::FetchSharedProjects(const std::shared_ptr<VantroNode>& node) const {
    const std::shared_ptr<vantrosdk::VantroClient> client = GetClient();
    if (!client) {
        return;
    }
    vantrosdk::GetSharedProjectsRequest request;
    request.SetAccountId(vantrocommon::Guid(node->GetID().AsStdString()));
    const auto answer = client->GetProjects()->GetSharedProjects(request);
    answer.KeepAlive();
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor = answer.GetExecutor();
    if (!executor) {
        executor = kelcore::async::GetDefaultExecutor();
    }
    answer.Then(std::move(executor), [node](const auto& completed) {
        // Refused answers are not looked at: the workspace is shown with whatever list came.
        // A failed exchange throws here and adds nothing.
        const std::vector<vantrosdk::Project> projects =
            completed.Get()->GetSharedProjectListObject();
        const auto account = std::dynamic_pointer_cast<VantroAccount>(node);
        if (!account) {
            return;  // only accounts are listed by this queue
        }
        auto workspace = std::make_shared<VantroWorkspace>(std::weak_ptr<VantroNode>(node));
        workspace->SetName(
            kelcore::config::Localizer::Get().GetString(kSharedProjectsWorkspaceName));
        account->SetWorkspaces(utility::SharedPtrVector<VantroWorkspace>{workspace});
        utility::SharedPtrVector<VantroProject> nodes;
        for (const vantrosdk::Project& project : projects) {
            nodes.push_back(VantroSdkProject::MakeWithRootFolder(project, workspace));
        }
        workspace->SetProjects(nodes);
    });
}

}  // namespace vantrokelui::model::VantroConnectorIntegration
