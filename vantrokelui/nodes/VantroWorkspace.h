// A workspace of an account; its children are the projects. Owned by the account's Workspaces
// list, holding the account weakly. Setters run on any thread; observers are called on the
// main thread.
#pragma once

#include <memory>

#include <kelcore/string/String.h>
#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/utility/ProjectsNotifyingProperty.h>

namespace vantrokelui {

class VantroProject;

class VantroWorkspace : public VantroNode, public ProjectsNotifyingProperty {
public:
    /// A workspace below `parent`, normally an account.
    explicit VantroWorkspace(std::weak_ptr<VantroNode> parent);
    ~VantroWorkspace() override;

    /// The projects, in their sorted order. Any thread.
    utility::SharedPtrVector<VantroNode> GetChildren() const override;
    /// "Wksp". Any thread.
    kelcore::string::string GetTypeTag() const override;

    /// Stores a copy of `projects` sorted by name, and notifies, unless it holds the same
    /// projects in the same order already. Then, changed or not, calls FetchChildren on every
    /// element of `projects` in the order given. Elements must not be null. Any thread.
    void SetProjects(const utility::SharedPtrVector<VantroProject>& projects) override;
};

}  // namespace vantrokelui
