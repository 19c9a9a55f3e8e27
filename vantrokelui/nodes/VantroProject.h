// A project of a workspace; its one child is its root folder, which comes with the project from
// the service. Owned by the workspace's Projects list, holding the workspace weakly. Setters run
// on any thread; observers are called on the main thread.
#pragma once

#include <memory>

#include <kelcore/string/String.h>
#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/utility/RootFolderNotifyingProperty.h>

namespace vantrokelui {

class VantroFolder;

class VantroProject : public VantroNode, public RootFolderNotifyingProperty {
public:
    /// A project below `parent`, normally a workspace, with no root folder yet.
    explicit VantroProject(std::weak_ptr<VantroNode> parent);
    ~VantroProject() override;

    /// The root folder as the one element; empty while there is none. Any thread.
    utility::SharedPtrVector<VantroNode> GetChildren() const override;
    /// "Proj". Any thread.
    kelcore::string::string GetTypeTag() const override;

    /// Stores the root folder and notifies unless it is the same one. Null is a contract
    /// violation: throws kelcore's exception through ThrowError and stores nothing. Any thread.
    void SetRootFolder(const std::shared_ptr<VantroFolder>& folder) override;
};

}  // namespace vantrokelui
