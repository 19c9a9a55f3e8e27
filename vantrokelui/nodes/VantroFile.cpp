#include <vantrokelui/nodes/VantroFile.h>

#include <utility>

namespace vantrokelui {

VantroFile::VantroFile(std::weak_ptr<VantroNode> parent)
    : VantroNode(std::move(parent), FetchChildrenState::Fetched) {}

VantroFile::~VantroFile() = default;

utility::SharedPtrVector<VantroNode> VantroFile::GetChildren() const {
    return {};
}

void VantroFile::FetchChildren() {
    SetFetchChildrenState(FetchChildrenState::Fetched);
}

kelcore::string::string VantroFile::GetTypeTag() const {
    return u"File";
}

}  // namespace vantrokelui
