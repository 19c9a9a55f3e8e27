// A file in a folder. A leaf of the tree: it has no children and is Fetched from birth. Owned by
// its folder's Files list, holding the folder weakly. Setters run on any thread; observers are
// called on the main thread.
#pragma once

#include <memory>

#include <kelcore/string/String.h>
#include <vantrokelui/nodes/VantroNode.h>

namespace vantrokelui {

class VantroFile : public VantroNode {
public:
    /// A file below `parent`, a folder; its state is Fetched at once.
    explicit VantroFile(std::weak_ptr<VantroNode> parent);
    ~VantroFile() override;

    /// Always empty. Any thread.
    utility::SharedPtrVector<VantroNode> GetChildren() const override;
    /// Sets the state to Fetched: there is nothing to fetch. Any thread.
    void FetchChildren() override;
    /// "File". Any thread.
    kelcore::string::string GetTypeTag() const override;
};

}  // namespace vantrokelui
