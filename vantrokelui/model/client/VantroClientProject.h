// A project as the client back end sees it. Its one child, the root folder, is made with the
// project by the workspace's fill, so there is nothing to fetch: FetchChildren only sets
// Fetching, as the base does, and the project stays there. It reacts to no message.
//
// Owned by its workspace's Projects list, holding the workspace weakly. Any thread.
#pragma once

#include <memory>

#include <vantrokelui/model/client/DatastoreListener.h>
#include <vantrokelui/nodes/VantroProject.h>

namespace vantrokelui::model::VantroClientIntegration {

class VantroClientProject : public VantroProject, public DatastoreListener {
public:
    /// A project below `parent`, normally a workspace, with no id, name or root folder yet.
    explicit VantroClientProject(std::weak_ptr<VantroNode> parent);
    /// Leaves the datastore's station, should anyone have subscribed it.
    ~VantroClientProject() override;

    /// Sets Fetching only: the root folder came with the project. Any thread.
    void FetchChildren() override;
};

}  // namespace vantrokelui::model::VantroClientIntegration
