// A stand-in for the older client library's datastore that knows only who is signed in: it
// answers GetCurrentUser with the user the test set (or a null user), every list with an empty
// list, and records the sign-out calls in order. Answers go out on the main-thread executor, as
// the service's datastore answers, so a test pumps the main thread to receive them. Installed
// under the empty name for the life of the object. Any thread.
//
//   auto datastore = std::make_shared<UserOnlyDatastore>();
//   datastore->SetCurrentUser(id, "ann");
//   UserOnlyDatastore::Installation installed(datastore);
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <kelcore/classref/InterfaceRef.h>
#include <kelcore/utility/Guid.h>
#include <kelcore/utility/ImmutableString.h>
#include <vantroclient/VantroDatastore.h>

namespace vantrokeluitest {

class UserOnlyDatastore : public vantro::VantroDatastore {
public:
    /// Puts a datastore in the place of the empty name, and none back at the end.
    class Installation {
    public:
        explicit Installation(std::shared_ptr<vantro::VantroDatastore> datastore);
        ~Installation();
        Installation(const Installation&) = delete;
        Installation& operator=(const Installation&) = delete;
    };

    UserOnlyDatastore();
    ~UserOnlyDatastore() override;

    /// The user the next GetCurrentUser answers with.
    void SetCurrentUser(const kelcore::utility::Guid& id, const std::string& name);
    /// "SignOutJwt" and "SignOutOAuth2" as they were called.
    std::vector<std::string> SignOuts() const;
    int CurrentUserRequests() const;

    kelcore::utility::ImmutableString GetStationID() const override;
    kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroAccountList>>
    GetAccountList() override;
    kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroTeamList>> GetTeamList(
        const kelcore::utility::Guid& accountID) override;
    kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroProjectList>>
    GetProjectList(const kelcore::utility::Guid& teamID) override;
    kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroAssetList>> GetAssetList(
        const kelcore::utility::Guid& folderID) override;
    kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroUser>> GetCurrentUser()
        override;
    void SignOutJwt() override;
    void SignOutOAuth2() override;

private:
    mutable std::mutex mutex;
    kelcore::classref::InterfaceRef<vantro::VantroUser> currentUser;
    std::vector<std::string> signOuts;
    int currentUserRequests = 0;
    kelcore::utility::ImmutableString station;
};

}  // namespace vantrokeluitest
