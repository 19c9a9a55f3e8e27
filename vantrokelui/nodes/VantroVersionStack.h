// A version stack in a folder: the versions of one shared asset, which uploads add to. A leaf of
// the tree: it has no children and is Fetched from birth. Owned by its folder's VersionStacks
// list, holding the folder weakly. Setters run on any thread; observers are called on the main
// thread.
#pragma once

#include <memory>

#include <kelcore/string/String.h>
#include <vantrokelui/nodes/VantroNode.h>

namespace vantrokelui {

class VantroVersionStack : public VantroNode {
public:
    /// A version stack below `parent`, a folder; its state is Fetched at once.
    explicit VantroVersionStack(std::weak_ptr<VantroNode> parent);
    ~VantroVersionStack() override;

    /// Always empty. Any thread.
    utility::SharedPtrVector<VantroNode> GetChildren() const override;
    /// Sets the state to Fetched: there is nothing to fetch. Any thread.
    void FetchChildren() override;
    /// "Vers". Any thread.
    kelcore::string::string GetTypeTag() const override;
};

}  // namespace vantrokelui
