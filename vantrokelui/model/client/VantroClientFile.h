// A file as the client back end sees it, made by a folder's fill from an asset of that
// type, which sets its id and name. A leaf: Fetched from birth, nothing to fetch (the base's
// FetchChildren), and it reacts to no message.
//
// Owned by its folder's Files list, holding the folder weakly. Any thread.
#pragma once

#include <memory>

#include <vantrokelui/model/client/DatastoreListener.h>
#include <vantrokelui/nodes/VantroFile.h>

namespace vantrokelui::model::VantroClientIntegration {

class VantroClientFile : public VantroFile, public DatastoreListener {
public:
    /// A file below `parent`, a folder, with no id or name yet.
    explicit VantroClientFile(std::weak_ptr<VantroNode> parent);
    /// Leaves the datastore's station, should anyone have subscribed it.
    ~VantroClientFile() override;
};

}  // namespace vantrokelui::model::VantroClientIntegration
