#include <vantrokelui/model/connector/VantroSdkWorkspace.h>

#include <utility>

#include <vantrokelui/model/connector/VantroSdkProject.h>
#include <vantrokelui/model/connector/detail/NodeIdentity.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>

namespace vantrokelui::model::VantroConnectorIntegration {

VantroSdkWorkspace::VantroSdkWorkspace(const vantrosdk::Workspace& workspace,
                                       std::weak_ptr<VantroNode> parent)
    : VantroWorkspace(std::move(parent)), queue(FetchWorkspaceChildrenQueue::GetInstance()) {
    detail::SetIdentity(*this, workspace.id, workspace.name);
}

VantroSdkWorkspace::~VantroSdkWorkspace() = default;

void VantroSdkWorkspace::FetchChildren() {
    SetProjects({});
    VantroWorkspace::FetchChildren();
    queue->EnqueueBack(SharedAs<VantroNode>(), 1,
                       utility::WeakBindMemberFunction(WeakAs<VantroSdkWorkspace>(),
                                                       &VantroSdkWorkspace::AddChildren));
}

void VantroSdkWorkspace::AddChildren(const std::vector<vantrosdk::Project>& list) {
    const std::shared_ptr<VantroNode> self = SharedAs<VantroNode>();
    utility::SharedPtrVector<VantroProject> projects = GetProjects();
    for (const vantrosdk::Project& project : list) {
        projects.push_back(VantroSdkProject::MakeWithRootFolder(project, self));
    }
    SetProjects(projects);
    SetFetchChildrenState(FetchChildrenState::Fetched);
}

}  // namespace vantrokelui::model::VantroConnectorIntegration
