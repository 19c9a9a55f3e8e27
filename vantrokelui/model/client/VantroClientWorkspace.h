// A workspace as the client back end sees it: what the client library calls a team. Its
// children are the team's projects, each made with its root folder (from the project's root
// asset id, with no name). Made by an account's fill, which sets its id and name.
// FetchChildren asks the datastore for the whole project list and replaces Projects with it at
// once. After its first fill the workspace listens for ProjectListChanged and fetches again
// when the message names this workspace.
//
// Owned by its account's Workspaces list, holding the account weakly. FetchChildren: any
// thread; AddChildren and messages: the datastore's executor; it may die on any thread.
#pragma once

#include <memory>

#include <kelcore/classref/InterfaceRef.h>
#include <kelcore/messaging/RawMessage.h>
#include <vantroclient/VantroProjectList.h>
#include <vantrokelui/model/client/DatastoreListener.h>
#include <vantrokelui/nodes/VantroWorkspace.h>

namespace vantrokelui::model::VantroClientIntegration {

class VantroClientWorkspace : public VantroWorkspace, public DatastoreListener {
public:
    /// A workspace below `parent`, normally an account, with no id or name yet.
    explicit VantroClientWorkspace(std::weak_ptr<VantroNode> parent);
    /// Leaves the datastore's station before anything of the node goes.
    ~VantroClientWorkspace() override;

    /// Sets Fetching (the projects stay until the answer replaces them) and asks the datastore
    /// for the projects of this workspace's ID. A failed answer changes nothing more. Any
    /// thread.
    void FetchChildren() override;

    /// On ProjectListChanged for this workspace's ID, fetches again; anything else does
    /// nothing. The sending thread.
    void ReceiveRawMessage(const kelcore::messaging::RawMessage& message) override;

    /// Replaces Projects with a VantroClientProject for each project of `list` (its name read
    /// under the project's lock), each with a nameless VantroClientFolder whose ID is the
    /// project's root asset id as its RootFolder; one write, then Fetched, then subscribes. A
    /// null list or item throws the null pointer exception naming its type, before anything is
    /// stored. The datastore's executor.
    void AddChildren(const kelcore::classref::InterfaceRef<vantro::VantroProjectList>& list);
};

}  // namespace vantrokelui::model::VantroClientIntegration
