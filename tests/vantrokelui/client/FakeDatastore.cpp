#include "FakeDatastore.h"

#include <atomic>
#include <utility>

#include <kelcore/async/Promise.h>
#include <kelcore/classref/InterfaceRef.h>
#include <kelcore/config/kel_exception.h>
#include <kelcore/threads/MainThreadExecutor.h>

namespace clienttest {

namespace {

kelcore::utility::ImmutableString NewStation() {
    static std::atomic<int> sCount{0};
    return kelcore::utility::ImmutableString("test.datastore." + std::to_string(++sCount));
}

}  // namespace

InterfaceRef<vantro::VantroAccount> MakeAccount(std::optional<std::string> name, Guid id) {
    vantro::v2::Account record;
    record.id = id;
    record.name = std::move(name);
    return kelcore::classref::MakeInterfaceRef<vantro::VantroAccount>(std::move(record));
}

InterfaceRef<vantro::VantroTeam> MakeTeam(std::optional<std::string> name, Guid id) {
    vantro::v2::Team record;
    record.id = id;
    record.name = std::move(name);
    return kelcore::classref::MakeInterfaceRef<vantro::VantroTeam>(std::move(record));
}

InterfaceRef<vantro::VantroProject> MakeProject(std::optional<std::string> name, Guid rootAssetID,
                                                Guid id) {
    vantro::v2::Project record;
    record.id = id;
    record.name = std::move(name);
    record.rootAssetID = rootAssetID;
    return kelcore::classref::MakeInterfaceRef<vantro::VantroProject>(std::move(record));
}

InterfaceRef<vantro::VantroAsset> MakeAsset(const std::string& type,
                                            std::optional<std::string> name, Guid id) {
    vantro::v2::Asset record;
    record.id = id;
    record.type = type;
    record.name = std::move(name);
    return kelcore::classref::MakeInterfaceRef<vantro::VantroAsset>(std::move(record));
}

InterfaceRef<vantro::VantroUser> MakeUser(const std::string& name, Guid id) {
    vantro::v2::User record;
    record.id = id;
    record.name = name;
    return kelcore::classref::MakeInterfaceRef<vantro::VantroUser>(std::move(record));
}

FakeDatastore::FakeDatastore(std::shared_ptr<kelcore::threads::AsyncExecutor> executor)
    : executor(executor ? std::move(executor) : kelcore::threads::GetMainThreadExecutor()),
      station(NewStation()) {}

FakeDatastore::~FakeDatastore() = default;

void FakeDatastore::SetAccounts(std::vector<InterfaceRef<vantro::VantroAccount>> items) {
    const std::lock_guard lock(mutex);
    accounts[Guid()] = std::move(items);
}

void FakeDatastore::SetTeams(const Guid& account,
                             std::vector<InterfaceRef<vantro::VantroTeam>> items) {
    const std::lock_guard lock(mutex);
    teams[account] = std::move(items);
}

void FakeDatastore::SetProjects(const Guid& team,
                                std::vector<InterfaceRef<vantro::VantroProject>> items) {
    const std::lock_guard lock(mutex);
    projects[team] = std::move(items);
}

void FakeDatastore::SetAssets(const Guid& folder,
                              std::vector<InterfaceRef<vantro::VantroAsset>> items) {
    const std::lock_guard lock(mutex);
    assets[folder] = std::move(items);
}

void FakeDatastore::SetCurrentUser(InterfaceRef<vantro::VantroUser> user) {
    const std::lock_guard lock(mutex);
    currentUser = std::move(user);
}

void FakeDatastore::HoldAnswers(bool on) {
    const std::lock_guard lock(mutex);
    hold = on;
}

template <class List, class Item>
kelcore::async::Future<InterfaceRef<List>> FakeDatastore::Ask(
    Kind kind, const Guid& id,
    std::map<Guid, std::vector<InterfaceRef<Item>>> FakeDatastore::*lists) {
    auto promise = std::make_shared<kelcore::async::Promise<InterfaceRef<List>>>(executor);
    auto future = promise->GetFuture();
    // The answer is made from the lists as they stand when it is given.
    auto answer = [this, promise, id, lists] {
        std::vector<InterfaceRef<Item>> items;
        {
            const std::lock_guard lock(mutex);
            const auto found = (this->*lists).find(id);
            if (found != (this->*lists).end()) {
                items = found->second;
            }
        }
        promise->SetValue(kelcore::classref::MakeInterfaceRef<List>(std::move(items)));
    };
    bool now = false;
    {
        const std::lock_guard lock(mutex);
        requests.push_back({kind, id});
        now = !hold && (this->*lists).count(id) != 0;
        if (!now) {
            waiting.push_back(
                {kind, id, answer, [promise] { promise->SetValue(nullptr); },
                 [promise](std::exception_ptr error) { promise->SetException(std::move(error)); }});
        }
    }
    if (now) {
        answer();
    }
    return future;
}

kelcore::async::Future<InterfaceRef<vantro::VantroAccountList>> FakeDatastore::GetAccountList() {
    return Ask<vantro::VantroAccountList>(Kind::Accounts, Guid(), &FakeDatastore::accounts);
}

kelcore::async::Future<InterfaceRef<vantro::VantroTeamList>> FakeDatastore::GetTeamList(
    const Guid& accountID) {
    return Ask<vantro::VantroTeamList>(Kind::Teams, accountID, &FakeDatastore::teams);
}

kelcore::async::Future<InterfaceRef<vantro::VantroProjectList>> FakeDatastore::GetProjectList(
    const Guid& teamID) {
    return Ask<vantro::VantroProjectList>(Kind::Projects, teamID, &FakeDatastore::projects);
}

kelcore::async::Future<InterfaceRef<vantro::VantroAssetList>> FakeDatastore::GetAssetList(
    const Guid& folderID) {
    return Ask<vantro::VantroAssetList>(Kind::Assets, folderID, &FakeDatastore::assets);
}

kelcore::async::Future<InterfaceRef<vantro::VantroUser>> FakeDatastore::GetCurrentUser() {
    auto promise =
        std::make_shared<kelcore::async::Promise<InterfaceRef<vantro::VantroUser>>>(executor);
    auto future = promise->GetFuture();
    auto answer = [this, promise] {
        InterfaceRef<vantro::VantroUser> user;
        {
            const std::lock_guard lock(mutex);
            user = currentUser.value_or(nullptr);
        }
        promise->SetValue(std::move(user));
    };
    bool now = false;
    {
        const std::lock_guard lock(mutex);
        requests.push_back({Kind::CurrentUser, Guid()});
        now = !hold && currentUser.has_value();
        if (!now) {
            waiting.push_back(
                {Kind::CurrentUser, Guid(), answer, [promise] { promise->SetValue(nullptr); },
                 [promise](std::exception_ptr error) { promise->SetException(std::move(error)); }});
        }
    }
    if (now) {
        answer();
    }
    return future;
}

std::size_t FakeDatastore::TakeWaiting(const std::function<void(Waiting&)>& action) {
    std::vector<Waiting> taken;
    {
        const std::lock_guard lock(mutex);
        taken.swap(waiting);
    }
    // Outside the mutex: an answer reads the lists under it.
    for (Waiting& entry : taken) {
        action(entry);
    }
    return taken.size();
}

std::size_t FakeDatastore::AnswerWaiting() {
    return TakeWaiting([](Waiting& entry) { entry.answer(); });
}

std::size_t FakeDatastore::AnswerWaitingWithNull() {
    return TakeWaiting([](Waiting& entry) { entry.answerNull(); });
}

std::size_t FakeDatastore::FailWaiting(kelcore::config::ResultCode code) {
    return TakeWaiting([code](Waiting& entry) {
        entry.fail(std::make_exception_ptr(kelcore::config::kel_exception("refused", code)));
    });
}

std::size_t FakeDatastore::CountWaiting() const {
    const std::lock_guard lock(mutex);
    return waiting.size();
}

std::vector<FakeDatastore::Request> FakeDatastore::Requests() const {
    const std::lock_guard lock(mutex);
    return requests;
}

std::size_t FakeDatastore::CountRequests(Kind kind, const Guid& id) const {
    const std::lock_guard lock(mutex);
    std::size_t count = 0;
    for (const Request& request : requests) {
        count += request.kind == kind && request.id == id ? 1 : 0;
    }
    return count;
}

std::vector<std::string> FakeDatastore::SignOuts() const {
    const std::lock_guard lock(mutex);
    return signOuts;
}

void FakeDatastore::OnSignOutJwt(std::function<void()> action) {
    const std::lock_guard lock(mutex);
    onSignOutJwt = std::move(action);
}

void FakeDatastore::SetName(std::string newName) {
    const std::lock_guard lock(mutex);
    name = std::move(newName);
}

void FakeDatastore::SignOutJwt() {
    std::function<void()> action;
    {
        const std::lock_guard lock(mutex);
        signOuts.push_back(name + ":SignOutJwt");
        action = onSignOutJwt;
    }
    if (action) {
        action();
    }
}

void FakeDatastore::SignOutOAuth2() {
    const std::lock_guard lock(mutex);
    signOuts.push_back(name + ":SignOutOAuth2");
}

}  // namespace clienttest
