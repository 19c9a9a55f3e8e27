// A node of the cloud location tree: the user, an account, a workspace, a project, a folder, a
// version stack or a file. Every node has an id, a name and a fetch state, all observable. The
// concrete kinds derive from this class, and each cloud back end derives from those and
// overrides FetchChildren to fill the child lists when its answers come.
//
// Ownership: a parent owns its children through its child-list properties (shared pointers); a
// child holds its parent weakly, given to the constructor and never changed. A node must be
// owned by a std::shared_ptr before anything binds to it or asks for its self-reference.
//
// Threads: setters and the walks below may run on any thread (back ends fill the tree from
// their own threads); observers are called on the main thread. Nodes take no lock of their own;
// their properties are data-race free.
//
//   auto folder = std::make_shared<VantroFolder>(project);   // parent held weakly
//   folder->SetName(u"Cuts");
//   std::shared_ptr<VantroNode> found = user->FindNode(folder->GetID());
#pragma once

#include <memory>

#include <kelcore/string/String.h>
#include <kelcore/utility/EnableSharedAs.h>
#include <kelcore/utility/Guid.h>
#include <vantrokelui/nodes/FetchChildrenState.h>
#include <vantrokelui/utility/FetchChildrenStateNotifyingProperty.h>
#include <vantrokelui/utility/IDNotifyingProperty.h>
#include <vantrokelui/utility/NameNotifyingProperty.h>
#include <vantrokelui/utility/NotifyingProperty.h>

namespace vantrokelui {

class VantroNode : public IDNotifyingProperty,
                   public NameNotifyingProperty,
                   public FetchChildrenStateNotifyingProperty,
                   public virtual kelcore::utility::EnableSharedAs {
public:
    ~VantroNode() override;

    VantroNode(const VantroNode&) = delete;
    VantroNode& operator=(const VantroNode&) = delete;

    /// The node's children as they stand, in the order of the kind (see each class). A new
    /// vector on each call: meant for walks, not for hot paths. Never fetches. Any thread.
    virtual utility::SharedPtrVector<VantroNode> GetChildren() const = 0;

    /// Starts a fetch of the children. Here it only sets the state to Fetching; a back end's
    /// override calls this first, then issues its request, and sets the child lists and then
    /// Fetched when the answer comes. Any thread.
    virtual void FetchChildren();

    /// The node's kind as a four-character tag ("User", "Acct", "Wksp", "Proj", "Fold",
    /// "Vers", "File"). Any thread.
    virtual kelcore::string::string GetTypeTag() const = 0;

    /// This node or the first node below it, depth first in GetChildren order, whose id is `id`;
    /// null when none is. Only what has been fetched can be found: the search never fetches.
    /// Throws std::bad_weak_ptr when the match is a node that no shared_ptr owns. Any thread.
    virtual std::shared_ptr<VantroNode> FindNode(const kelcore::utility::Guid& id);

    /// The parent, locked; null for the top of a tree or once the parent has died. Any thread.
    std::shared_ptr<VantroNode> GetParent() const { return parent.lock(); }

protected:
    /// A node below `parent` (empty for the top of a tree), with its fetch state NotFetched.
    explicit VantroNode(std::weak_ptr<VantroNode> parent);
    /// The same with another first fetch state: leaves are born Fetched. Being the initial
    /// value, it is what the first observer receives, and no delivery is queued for it.
    VantroNode(std::weak_ptr<VantroNode> parent, FetchChildrenState initialState);

private:
    const std::weak_ptr<VantroNode> parent;
};

}  // namespace vantrokelui
