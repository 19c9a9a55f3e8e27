#include <vantrokelui/nodes/VantroNode.h>

#include <utility>

namespace vantrokelui {

VantroNode::VantroNode(std::weak_ptr<VantroNode> parent) : parent(std::move(parent)) {}

VantroNode::VantroNode(std::weak_ptr<VantroNode> parent, FetchChildrenState initialState)
    : FetchChildrenStateNotifyingProperty(initialState), parent(std::move(parent)) {}

VantroNode::~VantroNode() = default;

void VantroNode::FetchChildren() {
    SetFetchChildrenState(FetchChildrenState::Fetching);
}

std::shared_ptr<VantroNode> VantroNode::FindNode(const kelcore::utility::Guid& id) {
    if (GetID() == id) {
        return SharedAs<VantroNode>();
    }
    for (const std::shared_ptr<VantroNode>& child : GetChildren()) {
        if (std::shared_ptr<VantroNode> found = child->FindNode(id)) {
            return found;
        }
    }
    return nullptr;
}

}  // namespace vantrokelui
