// The client library's store of the service's data: it answers whole lists (following every
// page itself), keeps them in memory, knows the signed-in user, and announces changes to lists
// as messages on its station, each carrying the Guid of the parent whose list changed. Lists
// are answered from memory until a change to them is announced.
//
// Futures complete, and messages are sent, on the datastore's executor: the main thread for
// the service's datastore (see ServiceDatastore.h), so a listener and a continuation never run
// at the same time as the user interface. A failed future carries a vantrocommon result code.
//
//   auto datastore = vantro::VantroDatastore::GetDatastore("");
//   kelcore::messaging::AddRawListener(datastore->GetStationID(), &listener);
//   datastore->GetAssetList(folderId).Then(executor, [](const auto& list) { ... });
#pragma once

#include <memory>

#include <kelcore/async/Future.h>
#include <kelcore/classref/InterfaceRef.h>
#include <kelcore/utility/Guid.h>
#include <kelcore/utility/ImmutableString.h>
#include <vantroclient/VantroAccountList.h>
#include <vantroclient/VantroAssetList.h>
#include <vantroclient/VantroProjectList.h>
#include <vantroclient/VantroTeamList.h>
#include <vantroclient/VantroUser.h>

namespace vantro {

class VantroDatastore {
public:
    /// The signed-in user's accounts changed. `parentID` is the user's id.
    struct AccountListChanged {
        kelcore::utility::Guid parentID;
    };
    /// The teams of the account `parentID` changed.
    struct TeamListChanged {
        kelcore::utility::Guid parentID;
    };
    /// The projects of the team `parentID` changed (or the shared projects of the account).
    struct ProjectListChanged {
        kelcore::utility::Guid parentID;
    };
    /// The children of the folder or version stack `parentID` changed.
    struct AssetListChanged {
        kelcore::utility::Guid parentID;
    };

    virtual ~VantroDatastore() = default;

    /// The datastore called `name` (the empty name is the one in use): the one set for it with
    /// SetDatastore, else the service's, made on first use and kept for the process. Any thread.
    static std::shared_ptr<VantroDatastore> GetDatastore(const kelcore::utility::ImmutableString& name);
    /// Puts `datastore` in the place of `name` for later GetDatastore calls; null lets the next
    /// call make the service's again. For hosts and tests. Any thread.
    static void SetDatastore(const kelcore::utility::ImmutableString& name,
                             std::shared_ptr<VantroDatastore> datastore);

    /// The station its change messages go to. Any thread.
    virtual kelcore::utility::ImmutableString GetStationID() const = 0;

    /// Each: the whole list, from memory when it is known and unchanged since. Any thread.
    virtual kelcore::async::Future<kelcore::classref::InterfaceRef<VantroAccountList>> GetAccountList() = 0;
    virtual kelcore::async::Future<kelcore::classref::InterfaceRef<VantroTeamList>> GetTeamList(
        const kelcore::utility::Guid& accountID) = 0;
    virtual kelcore::async::Future<kelcore::classref::InterfaceRef<VantroProjectList>> GetProjectList(
        const kelcore::utility::Guid& teamID) = 0;
    virtual kelcore::async::Future<kelcore::classref::InterfaceRef<VantroAssetList>> GetAssetList(
        const kelcore::utility::Guid& folderID) = 0;
    /// The signed-in user. Any thread.
    virtual kelcore::async::Future<kelcore::classref::InterfaceRef<VantroUser>> GetCurrentUser() = 0;

    /// Ends the session's bearer use here: forgets the access token, closes the event stream and
    /// empties the store. Requests under way fail. Any thread.
    virtual void SignOutJwt() = 0;
    /// Ends the sign-in itself: revokes the refresh token at the service and deletes the stored
    /// tokens (vantroauth's Logout), and forgets what SignOutJwt forgets. Any thread.
    virtual void SignOutOAuth2() = 0;
};

}  // namespace vantro
