#include <vantrokelui/nodes/VantroVersionStack.h>

#include <utility>

namespace vantrokelui {

VantroVersionStack::VantroVersionStack(std::weak_ptr<VantroNode> parent)
    : VantroNode(std::move(parent), FetchChildrenState::Fetched) {}

VantroVersionStack::~VantroVersionStack() = default;

utility::SharedPtrVector<VantroNode> VantroVersionStack::GetChildren() const {
    return {};
}

void VantroVersionStack::FetchChildren() {
    SetFetchChildrenState(FetchChildrenState::Fetched);
}

kelcore::string::string VantroVersionStack::GetTypeTag() const {
    return u"Vers";
}

}  // namespace vantrokelui
