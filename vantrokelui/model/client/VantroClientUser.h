// The signed-in user as the client back end sees it: the top of a tree filled from the
// datastore. Made by GetCurrentUser or CreateClientUser, which set its id and name.
// FetchChildren asks the datastore for the whole account list and replaces Accounts with it at
// once; the Accounts setter then fills the tree eagerly down to each project's root folder.
// After its first fill the user listens for AccountListChanged and fetches again on each one.
//
// Owned by whoever holds the user (the panel's view model, the location dialog). FetchChildren:
// any thread; AddChildren and messages: the datastore's executor; it may die on any thread.
//
//   auto user = std::make_shared<VantroClientUser>();
//   user->SetID(id);
//   user->FetchChildren();   // Fetching; later the accounts, Fetched, subscribed
#pragma once

#include <kelcore/classref/InterfaceRef.h>
#include <kelcore/messaging/RawMessage.h>
#include <vantroclient/VantroAccountList.h>
#include <vantrokelui/model/client/DatastoreListener.h>
#include <vantrokelui/nodes/VantroUser.h>

namespace vantrokelui::model::VantroClientIntegration {

class VantroClientUser : public VantroUser, public DatastoreListener {
public:
    /// A user with no id, no name and no parent.
    VantroClientUser();
    /// Leaves the datastore's station before anything of the node goes.
    ~VantroClientUser() override;

    /// Sets Fetching (the accounts stay until the answer replaces them) and asks the datastore
    /// for the account list. A failed answer changes nothing more. Any thread.
    void FetchChildren() override;

    /// On AccountListChanged, whatever its Guid, fetches the accounts again. Other messages
    /// do nothing. The sending thread.
    void ReceiveRawMessage(const kelcore::messaging::RawMessage& message) override;

    /// Replaces Accounts with a VantroClientAccount for each account of `list`, in one write,
    /// sets Fetched and subscribes. A null list or item throws the null pointer exception
    /// naming its type, before anything is stored. The datastore's executor.
    void AddChildren(const kelcore::classref::InterfaceRef<vantro::VantroAccountList>& list);
};

}  // namespace vantrokelui::model::VantroClientIntegration
