#include <vantrokelui/model/client/VantroClientVersionStack.h>

#include <utility>

namespace vantrokelui::model::VantroClientIntegration {

VantroClientVersionStack::VantroClientVersionStack(std::weak_ptr<VantroNode> parent)
    : VantroVersionStack(std::move(parent)) {}

VantroClientVersionStack::~VantroClientVersionStack() {
    LeaveStation();
}

}  // namespace vantrokelui::model::VantroClientIntegration
