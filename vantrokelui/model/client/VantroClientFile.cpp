#include <vantrokelui/model/client/VantroClientFile.h>

#include <utility>

namespace vantrokelui::model::VantroClientIntegration {

VantroClientFile::VantroClientFile(std::weak_ptr<VantroNode> parent)
    : VantroFile(std::move(parent)) {}

VantroClientFile::~VantroClientFile() {
    LeaveStation();
}

}  // namespace vantrokelui::model::VantroClientIntegration
