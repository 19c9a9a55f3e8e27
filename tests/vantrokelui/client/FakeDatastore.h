// A datastore that the client nodes' tests script: it answers each list from what the test set
// for it, at once or when the test says, fails requests on demand, records every request and
// sign-out in order, and sends the change messages on its own station. Installed with
// vantro::VantroDatastore::SetDatastore("", fake) (see ScopedDatastore). Futures carry the
// executor given at construction (the main thread by default, like the service's datastore),
// so continuations run there. Any thread.
//
//   auto fake = std::make_shared<clienttest::FakeDatastore>();
//   fake->SetAssets(folderId, {clienttest::MakeAsset("folder", "Cuts")});
//   folder->FetchChildren();        // answered at once; the fill runs when the queue is pumped
//   fake->Send(vantro::VantroDatastore::AssetListChanged{folderId});
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <kelcore/classref/InterfaceRef.h>
#include <kelcore/config/ResultCode.h>
#include <kelcore/messaging/Messaging.h>
#include <kelcore/threads/AsyncExecutor.h>
#include <kelcore/utility/Guid.h>
#include <kelcore/utility/ImmutableString.h>
#include <vantroclient/VantroDatastore.h>

namespace clienttest {

using kelcore::classref::InterfaceRef;
using kelcore::utility::Guid;

InterfaceRef<vantro::VantroAccount> MakeAccount(std::optional<std::string> name,
                                                Guid id = Guid::CreateUnique());
InterfaceRef<vantro::VantroTeam> MakeTeam(std::optional<std::string> name,
                                          Guid id = Guid::CreateUnique());
InterfaceRef<vantro::VantroProject> MakeProject(std::optional<std::string> name,
                                                Guid rootAssetID = Guid::CreateUnique(),
                                                Guid id = Guid::CreateUnique());
InterfaceRef<vantro::VantroAsset> MakeAsset(const std::string& type,
                                            std::optional<std::string> name,
                                            Guid id = Guid::CreateUnique());
InterfaceRef<vantro::VantroUser> MakeUser(const std::string& name, Guid id = Guid::CreateUnique());

class FakeDatastore : public vantro::VantroDatastore {
public:
    enum class Kind { Accounts, Teams, Projects, Assets, CurrentUser };
    struct Request {
        Kind kind;
        Guid id;  ///< The parent asked for; nil for accounts and the user.
    };

    /// A datastore whose futures carry `executor`; null means the main thread's executor.
    explicit FakeDatastore(std::shared_ptr<kelcore::threads::AsyncExecutor> executor = nullptr);
    ~FakeDatastore() override;

    // What the lists hold. A request for a list that is set is answered at once unless
    // HoldAnswers is on; a request for one that is not set waits.
    void SetAccounts(std::vector<InterfaceRef<vantro::VantroAccount>> items);
    void SetTeams(const Guid& account, std::vector<InterfaceRef<vantro::VantroTeam>> items);
    void SetProjects(const Guid& team, std::vector<InterfaceRef<vantro::VantroProject>> items);
    void SetAssets(const Guid& folder, std::vector<InterfaceRef<vantro::VantroAsset>> items);
    void SetCurrentUser(InterfaceRef<vantro::VantroUser> user);
    /// While on, every request waits for AnswerWaiting or FailWaiting.
    void HoldAnswers(bool hold);

    /// Answers every waiting request from what is set now (an empty list when nothing is set,
    /// a null user); how many were answered.
    std::size_t AnswerWaiting();
    /// Answers every waiting request with a null list (or user); how many.
    std::size_t AnswerWaitingWithNull();
    /// Fails every waiting request with a kel_exception of `code`; how many.
    std::size_t FailWaiting(kelcore::config::ResultCode code);
    std::size_t CountWaiting() const;

    /// Every request so far, in order.
    std::vector<Request> Requests() const;
    std::size_t CountRequests(Kind kind, const Guid& id = Guid()) const;
    /// "SignOutJwt" and "SignOutOAuth2" as they were called, tagged with `name`.
    std::vector<std::string> SignOuts() const;
    /// Called inside SignOutJwt, before it returns (a test swaps the datastore there).
    void OnSignOutJwt(std::function<void()> action);
    void SetName(std::string newName);

    /// Sends `message` on the station now, on this thread, as the datastore does.
    template <class T>
    void Send(const T& message) const {
        kelcore::messaging::SendMessage(station, message);
    }
    std::size_t CountListeners() const { return kelcore::messaging::CountRawListeners(station); }

    kelcore::utility::ImmutableString GetStationID() const override { return station; }
    kelcore::async::Future<InterfaceRef<vantro::VantroAccountList>> GetAccountList() override;
    kelcore::async::Future<InterfaceRef<vantro::VantroTeamList>> GetTeamList(
        const Guid& accountID) override;
    kelcore::async::Future<InterfaceRef<vantro::VantroProjectList>> GetProjectList(
        const Guid& teamID) override;
    kelcore::async::Future<InterfaceRef<vantro::VantroAssetList>> GetAssetList(
        const Guid& folderID) override;
    kelcore::async::Future<InterfaceRef<vantro::VantroUser>> GetCurrentUser() override;
    void SignOutJwt() override;
    void SignOutOAuth2() override;

private:
    struct Waiting {
        Kind kind;
        Guid id;
        std::function<void()> answer;
        std::function<void()> answerNull;
        std::function<void(std::exception_ptr)> fail;
    };

    template <class List, class Item>
    kelcore::async::Future<InterfaceRef<List>> Ask(
        Kind kind, const Guid& id,
        std::map<Guid, std::vector<InterfaceRef<Item>>> FakeDatastore::*lists);
    std::size_t TakeWaiting(const std::function<void(Waiting&)>& action);

    const std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    const kelcore::utility::ImmutableString station;
    mutable std::mutex mutex;
    bool hold = false;
    std::map<Guid, std::vector<InterfaceRef<vantro::VantroAccount>>> accounts;
    std::map<Guid, std::vector<InterfaceRef<vantro::VantroTeam>>> teams;
    std::map<Guid, std::vector<InterfaceRef<vantro::VantroProject>>> projects;
    std::map<Guid, std::vector<InterfaceRef<vantro::VantroAsset>>> assets;
    std::optional<InterfaceRef<vantro::VantroUser>> currentUser;
    std::vector<Waiting> waiting;
    std::vector<Request> requests;
    std::vector<std::string> signOuts;
    std::function<void()> onSignOutJwt;
    std::string name = "fake";
};

}  // namespace clienttest
