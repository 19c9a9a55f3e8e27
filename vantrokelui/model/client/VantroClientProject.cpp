#include <vantrokelui/model/client/VantroClientProject.h>

#include <utility>

namespace vantrokelui::model::VantroClientIntegration {

VantroClientProject::VantroClientProject(std::weak_ptr<VantroNode> parent)
    : VantroProject(std::move(parent)) {}

VantroClientProject::~VantroClientProject() {
    LeaveStation();
}

void VantroClientProject::FetchChildren() {
    VantroProject::FetchChildren();
}

}  // namespace vantrokelui::model::VantroClientIntegration
