#include <vantrokelui/model/connector/VantroSdkFolder.h>

#include <utility>

#include <vantrokelui/model/connector/VantroSdkFile.h>
#include <vantrokelui/model/connector/VantroSdkVersionStack.h>
#include <vantrokelui/model/connector/detail/NodeIdentity.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>

namespace vantrokelui::model::VantroConnectorIntegration {

VantroSdkFolder::VantroSdkFolder(const vantrosdk::Asset& asset, std::weak_ptr<VantroNode> parent)
    : VantroFolder(std::move(parent)), queue(FetchFolderChildrenQueue::GetInstance()) {
    detail::SetIdentity(*this, asset.id.value_or(vantrocommon::Guid()), asset.name);
}

VantroSdkFolder::~VantroSdkFolder() = default;

void VantroSdkFolder::FetchChildren() {
    SetFolders({});
    SetFiles({});
    SetVersionStacks({});
    VantroFolder::FetchChildren();
    queue->EnqueueBack(
        SharedAs<VantroNode>(), 1,
        utility::WeakBindMemberFunction(WeakAs<VantroSdkFolder>(), &VantroSdkFolder::AddChildren));
}

void VantroSdkFolder::AddChildren(const std::vector<vantrosdk::Asset>& list) {
    const std::shared_ptr<VantroNode> self = SharedAs<VantroNode>();
    utility::SharedPtrVector<VantroFolder> folders = GetFolders();
    utility::SharedPtrVector<VantroFile> files = GetFiles();
    utility::SharedPtrVector<VantroVersionStack> versionStacks = GetVersionStacks();
    for (const vantrosdk::Asset& asset : list) {
        // Exact text: an upper-cased or unknown type is no child of ours.
        if (asset.type == "folder") {
            folders.push_back(std::make_shared<VantroSdkFolder>(asset, self));
        } else if (asset.type == "file") {
            files.push_back(std::make_shared<VantroSdkFile>(asset, self));
        } else if (asset.type == "version_stack") {
            versionStacks.push_back(std::make_shared<VantroSdkVersionStack>(asset, self));
        }
    }
    SetFolders(folders);
    SetFiles(files);
    SetVersionStacks(versionStacks);
    SetFetchChildrenState(FetchChildrenState::Fetched);
}

}  // namespace vantrokelui::model::VantroConnectorIntegration
