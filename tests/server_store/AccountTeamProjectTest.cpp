#include "StoreErrorKind.h"
#include "StoreFixture.h"
#include "security/Random.h"

namespace storetest {
namespace {

using vantroserver::store::PageRequest;
using vantroserver::store::StoreError;

class AccountTeamProjectTest : public StoreFixture {};

TEST_F(AccountTeamProjectTest, AccountStartsEmptyWithItsOwnerAsMember) {
    const auto ann = AddUser("ann");
    const auto account = store->Accounts().Add("Acme", ann, 5000);
    const auto found = store->Accounts().Find(account.id);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->name, "Acme");
    EXPECT_EQ(found->ownerId, ann);
    EXPECT_EQ(found->storageLimit, 5000);
    EXPECT_EQ(found->storageUsed, 0);
    EXPECT_TRUE(store->Accounts().IsMember(account.id, ann));
}

TEST_F(AccountTeamProjectTest, AccountRefusesUnknownOwnerBadNameAndNegativeLimit) {
    const auto ann = AddUser("ann");
    auto& accounts = store->Accounts();
    EXPECT_EQ(KindOf([&] { accounts.Add("Acme", vantroserver::security::NewId(), 1); }),
              StoreError::Kind::NotFound);
    EXPECT_EQ(KindOf([&] { accounts.Add("Acme", "ann", 1); }), StoreError::Kind::NotFound);
    EXPECT_EQ(KindOf([&] { accounts.Add("", ann, 1); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { accounts.Add("Acme", ann, -1); }), StoreError::Kind::Invalid);
}

TEST_F(AccountTeamProjectTest, MemberIsAddedOnce) {
    const auto ann = AddUser("ann");
    const auto bob = AddUser("bob");
    const auto account = store->Accounts().Add("Acme", ann, 1);
    EXPECT_FALSE(store->Accounts().IsMember(account.id, bob));
    store->Accounts().AddMember(account.id, bob);
    EXPECT_TRUE(store->Accounts().IsMember(account.id, bob));
    EXPECT_EQ(KindOf([&] { store->Accounts().AddMember(account.id, bob); }),
              StoreError::Kind::Conflict);
    EXPECT_EQ(KindOf([&] { store->Accounts().AddMember(vantroserver::security::NewId(), bob); }),
              StoreError::Kind::NotFound);
}

TEST_F(AccountTeamProjectTest, AccountListHoldsMembershipsAndSharesByName) {
    const auto ann = AddUser("ann");
    const auto carol = AddUser("carol");
    const auto zeta = store->Accounts().Add("Zeta", carol, 1);
    const auto acme = store->Accounts().Add("Acme", ann, 1);
    const auto other = store->Accounts().Add("Middle", ann, 1);
    const auto team = store->Teams().Add(acme.id, "Editors", {ann});
    const auto project = store->Projects().Add(team.id, "Beta");
    store->Projects().Share(project.id, carol);

    const auto carols = store->Accounts().ListForUser(carol, PageRequest{0, 10});
    ASSERT_EQ(carols.total, 2u);
    ASSERT_EQ(carols.items.size(), 2u);
    EXPECT_EQ(carols.items[0].account.id, acme.id);
    EXPECT_FALSE(carols.items[0].member);
    EXPECT_EQ(carols.items[1].account.id, zeta.id);
    EXPECT_TRUE(carols.items[1].member);

    const auto anns = store->Accounts().ListForUser(ann, PageRequest{1, 1});
    EXPECT_EQ(anns.total, 2u);
    ASSERT_EQ(anns.items.size(), 1u);
    EXPECT_EQ(anns.items[0].account.id, other.id);
}

TEST_F(AccountTeamProjectTest, TeamMembersJoinTheAccount) {
    const auto ann = AddUser("ann");
    const auto bob = AddUser("bob");
    const auto account = store->Accounts().Add("Acme", ann, 1);
    const auto team = store->Teams().Add(account.id, "Editors", {bob});
    EXPECT_TRUE(store->Teams().IsMember(team.id, bob));
    EXPECT_FALSE(store->Teams().IsMember(team.id, ann));
    EXPECT_TRUE(store->Accounts().IsMember(account.id, bob));
    store->Teams().AddMember(team.id, ann);
    EXPECT_TRUE(store->Teams().IsMember(team.id, ann));
    EXPECT_EQ(KindOf([&] { store->Teams().AddMember(team.id, ann); }), StoreError::Kind::Conflict);
}

TEST_F(AccountTeamProjectTest, TeamWithAnUnknownMemberIsNotMade) {
    const auto ann = AddUser("ann");
    const auto account = store->Accounts().Add("Acme", ann, 1);
    EXPECT_EQ(KindOf([&] {
                  store->Teams().Add(account.id, "Editors", {ann, vantroserver::security::NewId()});
              }),
              StoreError::Kind::NotFound);
    EXPECT_EQ(store->Teams().ListForUser(ann, account.id, PageRequest{}).total, 0u);
}

TEST_F(AccountTeamProjectTest, TeamListHoldsOnlyTheUsersTeamsOfThatAccountByNameThenId) {
    const auto ann = AddUser("ann");
    const auto bob = AddUser("bob");
    const auto acme = store->Accounts().Add("Acme", ann, 1);
    const auto zeta = store->Accounts().Add("Zeta", ann, 1);
    const auto sales = store->Teams().Add(acme.id, "Sales", {ann});
    const auto editorsOne = store->Teams().Add(acme.id, "Editors", {ann});
    const auto editorsTwo = store->Teams().Add(acme.id, "Editors", {ann});
    store->Teams().Add(acme.id, "Hidden", {bob});
    store->Teams().Add(zeta.id, "Elsewhere", {ann});

    const auto page = store->Teams().ListForUser(ann, acme.id, PageRequest{0, 100});
    EXPECT_EQ(page.total, 3u);
    ASSERT_EQ(page.items.size(), 3u);
    const bool oneFirst = editorsOne.id < editorsTwo.id;
    EXPECT_EQ(page.items[0].id, oneFirst ? editorsOne.id : editorsTwo.id);
    EXPECT_EQ(page.items[1].id, oneFirst ? editorsTwo.id : editorsOne.id);
    EXPECT_EQ(page.items[2].id, sales.id);
}

TEST_F(AccountTeamProjectTest, ProjectGetsARootFolderNamedLikeIt) {
    const auto ann = AddUser("ann");
    const auto account = store->Accounts().Add("Acme", ann, 1);
    const auto team = store->Teams().Add(account.id, "Editors", {ann});
    const auto project = store->Projects().Add(team.id, "Alpha");
    EXPECT_EQ(project.accountId, account.id);
    const auto root = store->Assets().Find(project.rootAssetId);
    ASSERT_TRUE(root.has_value());
    EXPECT_EQ(root->type, vantroserver::store::AssetType::Folder);
    EXPECT_EQ(root->name, "Alpha");
    EXPECT_EQ(root->projectId, project.id);
    EXPECT_TRUE(root->parentId.empty());
    const auto found = store->Projects().Find(project.id);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->rootAssetId, project.rootAssetId);
    EXPECT_EQ(found->teamId, team.id);
}

TEST_F(AccountTeamProjectTest, ProjectRefusesUnknownTeamAndBadName) {
    const auto ann = AddUser("ann");
    const auto account = store->Accounts().Add("Acme", ann, 1);
    const auto team = store->Teams().Add(account.id, "Editors", {ann});
    EXPECT_EQ(KindOf([&] { store->Projects().Add(vantroserver::security::NewId(), "A"); }),
              StoreError::Kind::NotFound);
    EXPECT_EQ(KindOf([&] { store->Projects().Add(team.id, "a/b"); }), StoreError::Kind::Invalid);
    EXPECT_EQ(store->Projects().ListForTeam(team.id, PageRequest{}).total, 0u);
}

TEST_F(AccountTeamProjectTest, ProjectsOfATeamArePagedByName) {
    const auto ann = AddUser("ann");
    const auto account = store->Accounts().Add("Acme", ann, 1);
    const auto team = store->Teams().Add(account.id, "Editors", {ann});
    for (const char* name : {"d", "b", "e", "a", "c"}) {
        store->Projects().Add(team.id, name);
    }
    const auto second = store->Projects().ListForTeam(team.id, PageRequest{2, 2});
    EXPECT_EQ(second.total, 5u);
    ASSERT_EQ(second.items.size(), 2u);
    EXPECT_EQ(second.items[0].name, "c");
    EXPECT_EQ(second.items[1].name, "d");
    const auto last = store->Projects().ListForTeam(team.id, PageRequest{4, 2});
    ASSERT_EQ(last.items.size(), 1u);
    EXPECT_EQ(last.items[0].name, "e");
    const auto beyond = store->Projects().ListForTeam(team.id, PageRequest{6, 2});
    EXPECT_TRUE(beyond.items.empty());
    EXPECT_EQ(beyond.total, 5u);
}

TEST_F(AccountTeamProjectTest, SharedProjectsAreListedPerAccountAndSharedOnce) {
    const auto ann = AddUser("ann");
    const auto carol = AddUser("carol");
    const auto acme = store->Accounts().Add("Acme", ann, 1);
    const auto zeta = store->Accounts().Add("Zeta", ann, 1);
    const auto editors = store->Teams().Add(acme.id, "Editors", {ann});
    const auto zetaTeam = store->Teams().Add(zeta.id, "Z", {ann});
    const auto beta = store->Projects().Add(editors.id, "Beta");
    const auto alpha = store->Projects().Add(editors.id, "Alpha");
    store->Projects().Add(editors.id, "Gamma");
    const auto zed = store->Projects().Add(zetaTeam.id, "Zed");
    store->Projects().Share(beta.id, carol);
    store->Projects().Share(alpha.id, carol);
    store->Projects().Share(zed.id, carol);
    EXPECT_EQ(KindOf([&] { store->Projects().Share(beta.id, carol); }), StoreError::Kind::Conflict);

    const auto shared = store->Projects().ListSharedWith(carol, acme.id, PageRequest{});
    EXPECT_EQ(shared.total, 2u);
    ASSERT_EQ(shared.items.size(), 2u);
    EXPECT_EQ(shared.items[0].id, alpha.id);
    EXPECT_EQ(shared.items[1].id, beta.id);
    EXPECT_EQ(store->Projects().ListSharedWith(ann, acme.id, PageRequest{}).total, 0u);
}

}  // namespace
}  // namespace storetest
