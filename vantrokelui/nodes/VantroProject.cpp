#include <vantrokelui/nodes/VantroProject.h>

#include <utility>

#include <kelcore/config/ErrorHandling.h>
#include <vantrokelui/nodes/VantroFolder.h>

namespace vantrokelui {

namespace {

constexpr const char* kNoNullRootFolder =
    "$$$/Corvane/vantrokelui/viewmodel/VantroShare/NoNullRootFolder=Contract violation: "
    "RootFolder property may not be set to null.";

}  // namespace

VantroProject::VantroProject(std::weak_ptr<VantroNode> parent) : VantroNode(std::move(parent)) {}

VantroProject::~VantroProject() = default;

utility::SharedPtrVector<VantroNode> VantroProject::GetChildren() const {
    utility::SharedPtrVector<VantroNode> children;
    if (std::shared_ptr<VantroFolder> root = GetRootFolder()) {
        children.push_back(std::move(root));
    }
    return children;
}

kelcore::string::string VantroProject::GetTypeTag() const {
    return u"Proj";
}

void VantroProject::SetRootFolder(const std::shared_ptr<VantroFolder>& folder) {
    if (!folder) {
        kelcore::config::ThrowError(kNoNullRootFolder);
    }
    RootFolderNotifyingProperty::SetRootFolder(folder);
}

}  // namespace vantrokelui
