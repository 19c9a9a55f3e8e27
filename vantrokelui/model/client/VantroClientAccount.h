// An account as the client back end sees it; its children are the account's teams, shown as
// workspaces. Made by the user's fill, which sets its id and name. FetchChildren asks the
// datastore for the whole team list and replaces Workspaces with it at once; the Workspaces
// setter then fetches each workspace's projects. After its first fill the account listens for
// TeamListChanged and fetches again when the message names this account.
//
// Owned by the user's Accounts list, holding the user weakly. FetchChildren: any thread;
// AddChildren and messages: the datastore's executor; it may die on any thread.
#pragma once

#include <memory>

#include <kelcore/classref/InterfaceRef.h>
#include <kelcore/messaging/RawMessage.h>
#include <vantroclient/VantroTeamList.h>
#include <vantrokelui/model/client/DatastoreListener.h>
#include <vantrokelui/nodes/VantroAccount.h>

namespace vantrokelui::model::VantroClientIntegration {

class VantroClientAccount : public VantroAccount, public DatastoreListener {
public:
    /// An account below `parent`, normally the user, with no id or name yet.
    explicit VantroClientAccount(std::weak_ptr<VantroNode> parent);
    /// Leaves the datastore's station before anything of the node goes.
    ~VantroClientAccount() override;

    /// Sets Fetching (the workspaces stay until the answer replaces them) and asks the
    /// datastore for the teams of this account's ID. A failed answer changes nothing more. Any
    /// thread.
    void FetchChildren() override;

    /// On TeamListChanged for this account's ID, fetches again; anything else does nothing.
    /// The sending thread.
    void ReceiveRawMessage(const kelcore::messaging::RawMessage& message) override;

    /// Replaces Workspaces with a VantroClientWorkspace for each team of `list` (its name
    /// read under the team's lock), in one write, sets Fetched and subscribes. A null list or
    /// item throws the null pointer exception naming its type, before anything is stored. The
    /// datastore's executor.
    void AddChildren(const kelcore::classref::InterfaceRef<vantro::VantroTeamList>& list);
};

}  // namespace vantrokelui::model::VantroClientIntegration
