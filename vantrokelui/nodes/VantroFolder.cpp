#include <vantrokelui/nodes/VantroFolder.h>

#include <utility>

#include <vantrokelui/nodes/VantroFile.h>
#include <vantrokelui/nodes/VantroVersionStack.h>
#include <vantrokelui/nodes/detail/SortedByName.h>

namespace vantrokelui {

VantroFolder::VantroFolder(std::weak_ptr<VantroNode> parent) : VantroNode(std::move(parent)) {}

VantroFolder::~VantroFolder() = default;

utility::SharedPtrVector<VantroNode> VantroFolder::GetChildren() const {
    const utility::SharedPtrVector<VantroFile> files = GetFiles();
    const utility::SharedPtrVector<VantroVersionStack> stacks = GetVersionStacks();
    const utility::SharedPtrVector<VantroFolder> folders = GetFolders();
    utility::SharedPtrVector<VantroNode> children;
    children.reserve(files.size() + stacks.size() + folders.size());
    children.insert(children.end(), files.begin(), files.end());
    children.insert(children.end(), stacks.begin(), stacks.end());
    children.insert(children.end(), folders.begin(), folders.end());
    return children;
}

kelcore::string::string VantroFolder::GetTypeTag() const {
    return u"Fold";
}

void VantroFolder::SetFolders(const utility::SharedPtrVector<VantroFolder>& folders) {
    FoldersNotifyingProperty::SetFolders(detail::SortedByName(folders));
}

void VantroFolder::SetFiles(const utility::SharedPtrVector<VantroFile>& files) {
    FilesNotifyingProperty::SetFiles(detail::SortedByName(files));
}

void VantroFolder::SetVersionStacks(const utility::SharedPtrVector<VantroVersionStack>& stacks) {
    VersionStacksNotifyingProperty::SetVersionStacks(detail::SortedByName(stacks));
}

}  // namespace vantrokelui
