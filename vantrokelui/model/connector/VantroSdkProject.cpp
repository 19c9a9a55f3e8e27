#include <vantrokelui/model/connector/VantroSdkProject.h>

#include <utility>

#include <vantrokelui/model/connector/VantroSdkFolder.h>
#include <vantrokelui/model/connector/detail/NodeIdentity.h>

namespace vantrokelui::model::VantroConnectorIntegration {

VantroSdkProject::VantroSdkProject(const vantrosdk::Project& project,
                                   std::weak_ptr<VantroNode> parent)
    : VantroProject(std::move(parent)) {
    detail::SetIdentity(*this, project.id, project.name);
}

VantroSdkProject::~VantroSdkProject() = default;

std::shared_ptr<VantroSdkProject> VantroSdkProject::MakeWithRootFolder(
    const vantrosdk::Project& project, const std::weak_ptr<VantroNode>& parent) {
    auto node = std::make_shared<VantroSdkProject>(project, parent);
    auto rootFolder = std::make_shared<VantroSdkFolder>(
        project.rootAsset, std::weak_ptr<VantroNode>(std::shared_ptr<VantroNode>(node)));
    // The root asset's own name is not what the user knows the folder by.
    rootFolder->SetName(node->GetName());
    node->SetRootFolder(rootFolder);
    return node;
}

void VantroSdkProject::FetchChildren() {
    VantroProject::FetchChildren();
}

}  // namespace vantrokelui::model::VantroConnectorIntegration
