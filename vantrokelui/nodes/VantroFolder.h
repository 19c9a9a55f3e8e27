// A folder of a project (its root folder or one below it). Its children are its files, version
// stacks and folders, which are fetched only when someone asks (a picker row opens), never
// eagerly. Owned by its parent's list or by the project's RootFolder, holding the parent
// weakly; a Selection may keep it alive after a re-fetch has replaced it in the tree. Setters
// run on any thread; observers are called on the main thread.
#pragma once

#include <memory>

#include <kelcore/string/String.h>
#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/utility/FilesNotifyingProperty.h>
#include <vantrokelui/utility/FoldersNotifyingProperty.h>
#include <vantrokelui/utility/VersionStacksNotifyingProperty.h>

namespace vantrokelui {

class VantroFile;
class VantroVersionStack;

class VantroFolder : public VantroNode,
                     public FoldersNotifyingProperty,
                     public FilesNotifyingProperty,
                     public VersionStacksNotifyingProperty {
public:
    /// A folder below `parent`, a project or another folder.
    explicit VantroFolder(std::weak_ptr<VantroNode> parent);
    ~VantroFolder() override;

    /// The files, then the version stacks, then the folders, each in its sorted order. Any
    /// thread.
    utility::SharedPtrVector<VantroNode> GetChildren() const override;
    /// "Fold". Any thread.
    kelcore::string::string GetTypeTag() const override;

    /// Stores a copy of `folders` sorted by name, and notifies, unless it holds the same
    /// folders in the same order already. Fetches nothing. Elements must not be null. Any
    /// thread.
    void SetFolders(const utility::SharedPtrVector<VantroFolder>& folders) override;
    /// The same for the files.
    void SetFiles(const utility::SharedPtrVector<VantroFile>& files) override;
    /// The same for the version stacks.
    void SetVersionStacks(const utility::SharedPtrVector<VantroVersionStack>& stacks) override;
};

}  // namespace vantrokelui
