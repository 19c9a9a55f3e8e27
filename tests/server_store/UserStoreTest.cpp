#include "StoreErrorKind.h"
#include "StoreFixture.h"
#include "security/Random.h"
#include "store/StoreError.h"

namespace storetest {
namespace {

using vantroserver::store::StoreError;

class UserStoreTest : public StoreFixture {};

TEST_F(UserStoreTest, AddedUserIsFoundByIdAndUsername) {
    const auto user = store->Users().Add({"ann", "secret", "Ann Lee", "ann@example.com"});
    EXPECT_TRUE(vantroserver::security::IsWellFormedId(user.id));
    const auto byId = store->Users().Find(user.id);
    ASSERT_TRUE(byId.has_value());
    EXPECT_EQ(byId->username, "ann");
    EXPECT_EQ(byId->name, "Ann Lee");
    EXPECT_EQ(byId->email, "ann@example.com");
    EXPECT_EQ(byId->createdAt, now);
    EXPECT_EQ(store->Users().FindByUsername("ann")->id, user.id);
}

TEST_F(UserStoreTest, NameDefaultsToTheUsername) {
    const auto user = store->Users().Add({"bob", "pw", "", ""});
    EXPECT_EQ(store->Users().Find(user.id)->name, "bob");
}

TEST_F(UserStoreTest, AuthenticatesOnlyTheRightPassword) {
    const auto user = store->Users().Add({"ann", "secret", "", ""});
    const auto signedIn = store->Users().Authenticate("ann", "secret");
    ASSERT_TRUE(signedIn.has_value());
    EXPECT_EQ(signedIn->id, user.id);
    EXPECT_FALSE(store->Users().Authenticate("ann", "Secret").has_value());
    EXPECT_FALSE(store->Users().Authenticate("ann", "").has_value());
    EXPECT_FALSE(store->Users().Authenticate("nobody", "secret").has_value());
}

TEST_F(UserStoreTest, StoresOnlyASaltedHashOfThePassword) {
    store->Users().Add({"ann", "very-secret-password", "", ""});
    auto database = vantroserver::store::Database::Open(directory.Path() / "vantro.db", false);
    auto lease = database->Acquire();
    auto statement = lease->Prepare("SELECT password_hash FROM users");
    ASSERT_TRUE(statement.Step());
    const std::string hash = statement.ColumnText(0);
    EXPECT_EQ(hash.find("very-secret-password"), std::string::npos);
    EXPECT_EQ(hash.rfind("pbkdf2-sha256$1000$", 0), 0u) << hash;
}

TEST_F(UserStoreTest, RefusesATakenUsername) {
    store->Users().Add({"ann", "pw", "", ""});
    EXPECT_EQ(KindOf([&] {
                  store->Users().Add({"ann", "other", "", ""});
              }),
              StoreError::Kind::Conflict);
}

TEST_F(UserStoreTest, RefusesBadUsernamesPasswordsAndEmails) {
    auto& users = store->Users();
    EXPECT_EQ(KindOf([&] { users.Add({"", "pw", "", ""}); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { users.Add({"has space", "pw", "", ""}); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] {
                  users.Add({std::string(65, 'a'), "pw", "", ""});
              }),
              StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { users.Add({"ann", "", "", ""}); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] {
                  users.Add({"ann", "pw", "", "no-at-sign"});
              }),
              StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] {
                  users.Add({"ann", "pw", "bad\nname", ""});
              }),
              StoreError::Kind::Invalid);
    EXPECT_FALSE(users.FindByUsername("ann").has_value());
}

TEST_F(UserStoreTest, MalformedAndUnknownIdsFindNothing) {
    EXPECT_FALSE(store->Users().Find("not-an-id").has_value());
    EXPECT_FALSE(store->Users().Find(vantroserver::security::NewId()).has_value());
    EXPECT_FALSE(store->Users().Find("").has_value());
}

TEST_F(UserStoreTest, ClientsAreRegisteredOnce) {
    auto& clients = store->Clients();
    EXPECT_FALSE(clients.Exists("vantrokelui-desktop"));
    clients.Add("vantrokelui-desktop");
    EXPECT_TRUE(clients.Exists("vantrokelui-desktop"));
    EXPECT_EQ(KindOf([&] { clients.Add("vantrokelui-desktop"); }), StoreError::Kind::Conflict);
    EXPECT_EQ(KindOf([&] { clients.Add("bad id"); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { clients.Add(""); }), StoreError::Kind::Invalid);
    EXPECT_EQ(clients.List(), std::vector<std::string>{"vantrokelui-desktop"});
}

}  // namespace
}  // namespace storetest
