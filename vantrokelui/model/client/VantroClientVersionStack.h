// A version stack as the client back end sees it, made by a folder's fill from an asset of that
// type, which sets its id and name. A leaf: Fetched from birth, nothing to fetch (the base's
// FetchChildren), and it reacts to no message.
//
// Owned by its folder's VersionStacks list, holding the folder weakly. Any thread.
#pragma once

#include <memory>

#include <vantrokelui/model/client/DatastoreListener.h>
#include <vantrokelui/nodes/VantroVersionStack.h>

namespace vantrokelui::model::VantroClientIntegration {

class VantroClientVersionStack : public VantroVersionStack, public DatastoreListener {
public:
    /// A version stack below `parent`, a folder, with no id or name yet.
    explicit VantroClientVersionStack(std::weak_ptr<VantroNode> parent);
    /// Leaves the datastore's station, should anyone have subscribed it.
    ~VantroClientVersionStack() override;
};

}  // namespace vantrokelui::model::VantroClientIntegration
