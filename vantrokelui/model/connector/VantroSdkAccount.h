// An account as the SDK back end sees it. FetchChildren lists its workspaces page by page
// through the shared FetchAccountChildrenQueue; each page arrives in AddChildren. An account
// in which the user has no workspace shows one "Shared Projects" workspace instead (see
// FetchAccountChildrenQueue::FetchSharedProjects). Owned by the user's Accounts list, holding
// the user weakly, and holding the queue for life. FetchChildren: any thread; AddChildren: the
// SDK's executor.
//
//   auto account = std::make_shared<VantroSdkAccount>(record, user);
//   account->FetchChildren();
#pragma once

#include <memory>
#include <vector>

#include <kelcore/async/Future.h>
#include <vantrokelui/model/connector/FetchAccountChildrenQueue.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrosdk/Account.h>
#include <vantrosdk/Workspace.h>

namespace vantrokelui::model::VantroConnectorIntegration {

class VantroSdkAccount : public VantroAccount {
public:
    /// An account with the record's id and name below `parent`; takes the shared queue.
    VantroSdkAccount(const vantrosdk::Account& account, std::weak_ptr<VantroNode> parent);
    ~VantroSdkAccount() override;

    /// Empties Workspaces, sets Fetching, and queues page 1 of the workspaces. Any thread.
    void FetchChildren() override;

    /// Appends a VantroSdkWorkspace for each workspace of one page, in the page's order, to
    /// the workspaces there already, stores them, and sets Fetched (from the first page on).
    /// Bound weakly. The SDK's executor.
    void AddChildren(const std::vector<vantrosdk::Workspace>& list);

private:
    kelcore::async::Future<void> fetchFuture;
    const std::shared_ptr<FetchAccountChildrenQueue> queue;
};

}  // namespace vantrokelui::model::VantroConnectorIntegration
