// The process-wide queue of account listings: one page of an account's workspaces per request
// (GET /v2/accounts/{id}/teams through Workspaces::GetWorkspacesByAccount), rate-limited and
// paged as FetchChildrenQueue says. An empty page means the user has no workspace of their own
// in the account; the queue then asks for the projects shared with them, outside the queue and
// uncounted, and shows them in one "Shared Projects" workspace. Shared by every
// VantroSdkAccount through WeakSingleton; it dies with the last of them. Any thread.
//
//   auto queue = FetchAccountChildrenQueue::GetInstance();
//   queue->EnqueueBack(account, 1, onChildren);
#pragma once

#include <memory>
#include <vector>

#include <kelcore/async/Future.h>
#include <kelcore/threads/AsyncExecutor.h>
#include <vantrokelui/model/connector/FetchChildrenQueue.h>
#include <vantrokelui/model/connector/WeakSingleton.h>
#include <vantrosdk/GetWorkspacesByAccountRequest.h>
#include <vantrosdk/GetWorkspacesByAccountResponse.h>
#include <vantrosdk/Workspace.h>

namespace vantrokelui::model::VantroConnectorIntegration {

/// The name of the workspace that holds an account's shared projects.
inline constexpr const char* kSharedProjectsWorkspaceName =
    "$$$/Corvane/vantrokelui/model/VantroConnectorIntegration/SharedProjects=Shared Projects";

class FetchAccountChildrenQueue
    : public FetchChildrenQueue<vantrosdk::GetWorkspacesByAccountRequest,
                                vantrosdk::GetWorkspacesByAccountResponse,
                                std::vector<vantrosdk::Workspace>>,
      public WeakSingleton<FetchAccountChildrenQueue> {
public:
    /// A queue that pumps on the IO-bound executor. Use GetInstance.
    FetchAccountChildrenQueue();
    ~FetchAccountChildrenQueue() override;

    /// Asks for the projects of the account `node` that are shared with the user (one request,
    /// no page, not counted) and, when the answer comes, replaces the account's workspaces by
    /// one plain workspace named "Shared Projects" holding those projects. The continuation
    /// holds the node until it has run; a failed exchange adds nothing, a refused one adds the
    /// workspace with whatever list the SDK gave. Does nothing without an SDK client. Any
    /// thread; the continuation runs on the SDK's executor.
    void FetchSharedProjects(const std::shared_ptr<VantroNode>& node) const;

protected:
    /// A queue that pumps on `executor`; for tests.
    explicit FetchAccountChildrenQueue(std::shared_ptr<kelcore::threads::AsyncExecutor> executor);

    /// Asks the process's SDK client for page `page` of the account's workspaces. Without a
    /// client the chain fails with the null pointer code and `handler` is never called.
    kelcore::async::Future<void> IssueRequest(std::shared_ptr<VantroNode> node, int page,
                                              ResponseHandler handler) override;
    /// GetWorkspaceList of the response; when it is empty, FetchSharedProjects(node) first.
    const std::vector<vantrosdk::Workspace>& ExtractChildren(
        const std::shared_ptr<VantroNode>& node,
        std::shared_ptr<vantrosdk::GetWorkspacesByAccountResponse> response) override;
};

}  // namespace vantrokelui::model::VantroConnectorIntegration
