// The process-wide queue of workspace listings: one page of a workspace's projects per request
// (GET /v2/teams/{id}/projects through Projects::GetProjectsByWorkspace), rate-limited and
// paged as FetchChildrenQueue says. Shared by every VantroSdkWorkspace through WeakSingleton;
// it dies with the last of them. Any thread.
//
//   auto queue = FetchWorkspaceChildrenQueue::GetInstance();
//   queue->EnqueueBack(workspace, 1, onChildren);
#pragma once

#include <memory>
#include <vector>

#include <kelcore/async/Future.h>
#include <kelcore/threads/AsyncExecutor.h>
#include <vantrokelui/model/connector/FetchChildrenQueue.h>
#include <vantrokelui/model/connector/WeakSingleton.h>
#include <vantrosdk/GetProjectsByWorkspaceRequest.h>
#include <vantrosdk/GetProjectsByWorkspaceResponse.h>
#include <vantrosdk/Project.h>

namespace vantrokelui::model::VantroConnectorIntegration {

class FetchWorkspaceChildrenQueue
    : public FetchChildrenQueue<vantrosdk::GetProjectsByWorkspaceRequest,
                                vantrosdk::GetProjectsByWorkspaceResponse,
                                std::vector<vantrosdk::Project>>,
      public WeakSingleton<FetchWorkspaceChildrenQueue> {
public:
    /// A queue that pumps on the IO-bound executor. Use GetInstance.
    FetchWorkspaceChildrenQueue();
    ~FetchWorkspaceChildrenQueue() override;

protected:
    /// A queue that pumps on `executor`; for tests.
    explicit FetchWorkspaceChildrenQueue(std::shared_ptr<kelcore::threads::AsyncExecutor> executor);

    /// Asks the process's SDK client for page `page` of the workspace's projects. Without a
    /// client the chain fails with the null pointer code and `handler` is never called.
    kelcore::async::Future<void> IssueRequest(std::shared_ptr<VantroNode> node, int page,
                                              ResponseHandler handler) override;
    /// GetProjectList of the response.
    const std::vector<vantrosdk::Project>& ExtractChildren(
        const std::shared_ptr<VantroNode>& node,
        std::shared_ptr<vantrosdk::GetProjectsByWorkspaceResponse> response) override;
};

}  // namespace vantrokelui::model::VantroConnectorIntegration
