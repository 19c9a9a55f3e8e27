// An account of the cloud service that the user belongs to; its children are the workspaces.
// Owned by the user's Accounts list, holding the user weakly. Setters run on any thread;
// observers are called on the main thread.
#pragma once

#include <memory>

#include <kelcore/string/String.h>
#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/utility/IconNotifyingProperty.h>
#include <vantrokelui/utility/WorkspacesNotifyingProperty.h>

namespace vantrokelui {

class VantroWorkspace;

class VantroAccount : public VantroNode,
                      public WorkspacesNotifyingProperty,
                      public IconNotifyingProperty {
public:
    /// An account below `parent`, normally the user.
    explicit VantroAccount(std::weak_ptr<VantroNode> parent);
    ~VantroAccount() override;

    /// The workspaces, in their sorted order. Any thread.
    utility::SharedPtrVector<VantroNode> GetChildren() const override;
    /// "Acct". Any thread.
    kelcore::string::string GetTypeTag() const override;

    /// Stores a copy of `workspaces` sorted by name, and notifies, unless it holds the same
    /// workspaces in the same order already. Then, changed or not, calls FetchChildren on every
    /// element of `workspaces` in the order given. Elements must not be null. Any thread.
    void SetWorkspaces(const utility::SharedPtrVector<VantroWorkspace>& workspaces) override;
};

}  // namespace vantrokelui
