#include "vantrokelui/support/UserOnlyDatastore.h"

#include <atomic>
#include <utility>

#include <kelcore/async/Promise.h>
#include <kelcore/threads/MainThreadExecutor.h>
#include <vantroclient/VantroAccountList.h>
#include <vantroclient/VantroAssetList.h>
#include <vantroclient/VantroProjectList.h>
#include <vantroclient/VantroTeamList.h>
#include <vantroclient/VantroUser.h>

namespace vantrokeluitest {

namespace {

template <class T>
kelcore::async::Future<T> Answer(T value) {
    kelcore::async::Promise<T> promise(kelcore::threads::GetMainThreadExecutor());
    auto future = promise.GetFuture();
    promise.SetValue(std::move(value));
    return future;
}

template <class List, class Item>
kelcore::async::Future<kelcore::classref::InterfaceRef<List>> EmptyList() {
    return Answer(kelcore::classref::MakeInterfaceRef<List>(
        std::vector<kelcore::classref::InterfaceRef<Item>>{}));
}

}  // namespace

UserOnlyDatastore::Installation::Installation(std::shared_ptr<vantro::VantroDatastore> datastore) {
    vantro::VantroDatastore::SetDatastore(kelcore::utility::ImmutableString(),
                                          std::move(datastore));
}

UserOnlyDatastore::Installation::~Installation() {
    vantro::VantroDatastore::SetDatastore(kelcore::utility::ImmutableString(), nullptr);
}

UserOnlyDatastore::UserOnlyDatastore() {
    static std::atomic<int> sCount{0};
    station = kelcore::utility::ImmutableString("test.useronly." + std::to_string(++sCount));
}

UserOnlyDatastore::~UserOnlyDatastore() = default;

void UserOnlyDatastore::SetCurrentUser(const kelcore::utility::Guid& id, const std::string& name) {
    vantro::v2::User record;
    record.id = id;
    record.name = name;
    const std::lock_guard lock(mutex);
    currentUser = kelcore::classref::MakeInterfaceRef<vantro::VantroUser>(std::move(record));
}

std::vector<std::string> UserOnlyDatastore::SignOuts() const {
    const std::lock_guard lock(mutex);
    return signOuts;
}

int UserOnlyDatastore::CurrentUserRequests() const {
    const std::lock_guard lock(mutex);
    return currentUserRequests;
}

kelcore::utility::ImmutableString UserOnlyDatastore::GetStationID() const {
    return station;
}

kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroAccountList>>
UserOnlyDatastore::GetAccountList() {
    return EmptyList<vantro::VantroAccountList, vantro::VantroAccount>();
}

kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroTeamList>>
UserOnlyDatastore::GetTeamList(const kelcore::utility::Guid&) {
    return EmptyList<vantro::VantroTeamList, vantro::VantroTeam>();
}

kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroProjectList>>
UserOnlyDatastore::GetProjectList(const kelcore::utility::Guid&) {
    return EmptyList<vantro::VantroProjectList, vantro::VantroProject>();
}

kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroAssetList>>
UserOnlyDatastore::GetAssetList(const kelcore::utility::Guid&) {
    return EmptyList<vantro::VantroAssetList, vantro::VantroAsset>();
}

kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroUser>>
UserOnlyDatastore::GetCurrentUser() {
    kelcore::classref::InterfaceRef<vantro::VantroUser> user;
    {
        const std::lock_guard lock(mutex);
        ++currentUserRequests;
        user = currentUser;
    }
    return Answer(std::move(user));
}

void UserOnlyDatastore::SignOutJwt() {
    const std::lock_guard lock(mutex);
    signOuts.push_back("SignOutJwt");
}

void UserOnlyDatastore::SignOutOAuth2() {
    const std::lock_guard lock(mutex);
    signOuts.push_back("SignOutOAuth2");
}

}  // namespace vantrokeluitest
