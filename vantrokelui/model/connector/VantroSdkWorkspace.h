// A workspace as the SDK back end sees it. FetchChildren lists its projects page by page
// through the shared FetchWorkspaceChildrenQueue; each page arrives in AddChildren, and each
// project comes with its root folder. Owned by its account's Workspaces list, holding the
// account weakly, and holding the queue for life. FetchChildren: any thread; AddChildren: the
// SDK's executor.
//
//   auto workspace = std::make_shared<VantroSdkWorkspace>(record, account);
//   workspace->FetchChildren();
#pragma once

#include <memory>
#include <vector>

#include <kelcore/async/Future.h>
#include <vantrokelui/model/connector/FetchWorkspaceChildrenQueue.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrosdk/Project.h>
#include <vantrosdk/Workspace.h>

namespace vantrokelui::model::VantroConnectorIntegration {

class VantroSdkWorkspace : public VantroWorkspace {
public:
    /// A workspace with the record's id and name below `parent`; takes the shared queue.
    VantroSdkWorkspace(const vantrosdk::Workspace& workspace, std::weak_ptr<VantroNode> parent);
    ~VantroSdkWorkspace() override;

    /// Empties Projects, sets Fetching, and queues page 1 of the projects. Any thread.
    void FetchChildren() override;

    /// Appends a VantroSdkProject (with its root folder) for each project of one page, in the
    /// page's order, to the projects there already, stores them, and sets Fetched (from the
    /// first page on). Bound weakly. The SDK's executor.
    void AddChildren(const std::vector<vantrosdk::Project>& list);

private:
    const std::shared_ptr<FetchWorkspaceChildrenQueue> queue;
    kelcore::async::Future<void> fetchFuture;
};

}  // namespace vantrokelui::model::VantroConnectorIntegration
