#include <vantrokelui/nodes/SelectionFunctions.h>

#include <string>

#include <vantrocommon/ServiceEndpoint.h>
#include <vantrokelui/nodes/NodeFunctions.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroUser.h>

namespace vantrokelui {

namespace {

constexpr char16_t kSeparator[] = u"/";

}  // namespace

void ResetSelection(const std::shared_ptr<VantroUser>& user) {
    if (!user) {
        return;
    }
    user->SetProposedAccount(nullptr);
    user->SetProposedSelection(nullptr);
    user->SetSelection(nullptr);
}

kelcore::string::string MakeSelectionPath(const std::shared_ptr<VantroNode>& node) {
    if (!node) {
        return kSeparator;
    }
    std::shared_ptr<VantroFolder> root;
    if (const std::shared_ptr<VantroProject> project = GetProject(node)) {
        root = project->GetRootFolder();
    }

    kelcore::string::string path;
    if (node.get() != root.get()) {
        path = kSeparator + node->GetName();
    }
    for (std::shared_ptr<VantroNode> ancestor = node->GetParent(); ancestor;
         ancestor = ancestor->GetParent()) {
        if (dynamic_cast<const VantroAccount*>(ancestor.get()) != nullptr) {
            return ancestor->GetName() + path;
        }
        if (ancestor.get() != root.get()) {
            path = kSeparator + ancestor->GetName() + path;
        }
    }
    return kSeparator;
}

kelcore::string::string MakeSettingsURL(const std::shared_ptr<VantroNode>& node) {
    const std::shared_ptr<VantroProject> project = GetProject(node);
    if (!project) {
        return {};
    }
    const std::string webBase = vantrocommon::ServiceEndpoint::Resolve().webBase;
    return kelcore::string::StdToUTF16String(webBase) + u"/projects/" +
           project->GetID().AsString() + u"/review-links";
}

}  // namespace vantrokelui
