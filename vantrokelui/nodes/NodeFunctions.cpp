#include <vantrokelui/nodes/NodeFunctions.h>

#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroWorkspace.h>

namespace vantrokelui {

namespace {

template <class Kind>
std::shared_ptr<Kind> FindSelfOrAncestor(const std::shared_ptr<VantroNode>& node) {
    for (std::shared_ptr<VantroNode> current = node; current; current = current->GetParent()) {
        if (std::shared_ptr<Kind> match = std::dynamic_pointer_cast<Kind>(current)) {
            return match;
        }
    }
    return nullptr;
}

}  // namespace

std::shared_ptr<VantroProject> GetProject(const std::shared_ptr<VantroNode>& node) {
    return FindSelfOrAncestor<VantroProject>(node);
}

std::shared_ptr<VantroAccount> GetAccount(const std::shared_ptr<VantroNode>& node) {
    return FindSelfOrAncestor<VantroAccount>(node);
}

std::shared_ptr<VantroWorkspace> GetWorkspace(const std::shared_ptr<VantroNode>& node) {
    return FindSelfOrAncestor<VantroWorkspace>(node);
}

}  // namespace vantrokelui
