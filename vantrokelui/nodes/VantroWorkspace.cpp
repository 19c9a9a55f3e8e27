#include <vantrokelui/nodes/VantroWorkspace.h>

#include <utility>

#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/detail/SortedByName.h>

namespace vantrokelui {

VantroWorkspace::VantroWorkspace(std::weak_ptr<VantroNode> parent)
    : VantroNode(std::move(parent)) {}

VantroWorkspace::~VantroWorkspace() = default;

utility::SharedPtrVector<VantroNode> VantroWorkspace::GetChildren() const {
    const utility::SharedPtrVector<VantroProject> projects = GetProjects();
    return {projects.begin(), projects.end()};
}

kelcore::string::string VantroWorkspace::GetTypeTag() const {
    return u"Wksp";
}

void VantroWorkspace::SetProjects(const utility::SharedPtrVector<VantroProject>& projects) {
    ProjectsNotifyingProperty::SetProjects(detail::SortedByName(projects));
    for (const std::shared_ptr<VantroProject>& project : projects) {
        project->FetchChildren();
    }
}

}  // namespace vantrokelui
