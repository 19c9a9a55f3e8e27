#include <vantrokelui/nodes/VantroAccount.h>

#include <utility>

#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrokelui/nodes/detail/SortedByName.h>

namespace vantrokelui {

VantroAccount::VantroAccount(std::weak_ptr<VantroNode> parent) : VantroNode(std::move(parent)) {}

VantroAccount::~VantroAccount() = default;

utility::SharedPtrVector<VantroNode> VantroAccount::GetChildren() const {
    const utility::SharedPtrVector<VantroWorkspace> workspaces = GetWorkspaces();
    return {workspaces.begin(), workspaces.end()};
}

kelcore::string::string VantroAccount::GetTypeTag() const {
    return u"Acct";
}

void VantroAccount::SetWorkspaces(const utility::SharedPtrVector<VantroWorkspace>& workspaces) {
    WorkspacesNotifyingProperty::SetWorkspaces(detail::SortedByName(workspaces));
    for (const std::shared_ptr<VantroWorkspace>& workspace : workspaces) {
        workspace->FetchChildren();
    }
}

}  // namespace vantrokelui
