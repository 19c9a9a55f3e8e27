#include <vantrokelui/model/connector/VantroSdkAccount.h>

#include <utility>

#include <vantrokelui/model/connector/VantroSdkWorkspace.h>
#include <vantrokelui/model/connector/detail/NodeIdentity.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>

namespace vantrokelui::model::VantroConnectorIntegration {

VantroSdkAccount::VantroSdkAccount(const vantrosdk::Account& account,
                                   std::weak_ptr<VantroNode> parent)
    : VantroAccount(std::move(parent)), queue(FetchAccountChildrenQueue::GetInstance()) {
    detail::SetIdentity(*this, account.id, account.name);
}

VantroSdkAccount::~VantroSdkAccount() = default;

void VantroSdkAccount::FetchChildren() {
    SetWorkspaces({});
    VantroAccount::FetchChildren();
    queue->EnqueueBack(SharedAs<VantroNode>(), 1,
                       utility::WeakBindMemberFunction(WeakAs<VantroSdkAccount>(),
                                                       &VantroSdkAccount::AddChildren));
}

void VantroSdkAccount::AddChildren(const std::vector<vantrosdk::Workspace>& list) {
    const std::shared_ptr<VantroNode> self = SharedAs<VantroNode>();
    utility::SharedPtrVector<VantroWorkspace> workspaces = GetWorkspaces();
    for (const vantrosdk::Workspace& workspace : list) {
        workspaces.push_back(std::make_shared<VantroSdkWorkspace>(workspace, self));
    }
    SetWorkspaces(workspaces);
    SetFetchChildrenState(FetchChildrenState::Fetched);
}

}  // namespace vantrokelui::model::VantroConnectorIntegration
