#include "StoreFixture.h"
#include "security/Random.h"

namespace storetest {
namespace {

using vantroserver::store::Change;
using vantroserver::store::ChangeKind;

// ann: member of Acme, in Editors (project Alpha, with a subfolder).
// bob: member of Acme, in Hidden (project Secret) only.
// carol: no membership; Alpha is shared with her.
// dave: member of Acme, in no team.
class AccessPolicyTest : public StoreFixture {
protected:
    AccessPolicyTest() {
        ann = AddUser("ann");
        bob = AddUser("bob");
        carol = AddUser("carol");
        dave = AddUser("dave");
        acme = store->Accounts().Add("Acme", ann, 1000).id;
        store->Accounts().AddMember(acme, dave);
        editors = store->Teams().Add(acme, "Editors", {ann}).id;
        hidden = store->Teams().Add(acme, "Hidden", {bob}).id;
        const auto alphaProject = store->Projects().Add(editors, "Alpha");
        alpha = alphaProject.id;
        alphaRoot = alphaProject.rootAssetId;
        const auto secretProject = store->Projects().Add(hidden, "Secret");
        secret = secretProject.id;
        secretRoot = secretProject.rootAssetId;
        sub = store->Assets().CreateFolder(alphaRoot, "Sub").id;
        store->Projects().Share(alpha, carol);
    }

    std::string ann, bob, carol, dave;
    std::string acme, editors, hidden, alpha, alphaRoot, secret, secretRoot, sub;
};

TEST_F(AccessPolicyTest, AccountIsSeenByMembersAndByThoseWithShares) {
    auto& access = store->Access();
    EXPECT_TRUE(access.CanSeeAccount(ann, acme));
    EXPECT_TRUE(access.CanSeeAccount(dave, acme));
    EXPECT_TRUE(access.CanSeeAccount(carol, acme));
    const auto eve = AddUser("eve");
    EXPECT_FALSE(access.CanSeeAccount(eve, acme));
}

TEST_F(AccessPolicyTest, TeamIsSeenByItsMembersOnly) {
    auto& access = store->Access();
    EXPECT_TRUE(access.CanSeeTeam(ann, editors));
    EXPECT_FALSE(access.CanSeeTeam(ann, hidden));
    EXPECT_FALSE(access.CanSeeTeam(carol, editors));
    EXPECT_FALSE(access.CanSeeTeam(dave, editors));
}

TEST_F(AccessPolicyTest, ProjectIsSeenThroughItsTeamOrAShare) {
    auto& access = store->Access();
    EXPECT_TRUE(access.CanSeeProject(ann, alpha));
    EXPECT_TRUE(access.CanSeeProject(carol, alpha));
    EXPECT_FALSE(access.CanSeeProject(ann, secret));
    EXPECT_FALSE(access.CanSeeProject(carol, secret));
    EXPECT_FALSE(access.CanSeeProject(dave, alpha));
    EXPECT_TRUE(access.CanSeeProject(bob, secret));
    EXPECT_FALSE(access.CanSeeProject(bob, alpha));
}

TEST_F(AccessPolicyTest, AssetIsSeenWhenItsProjectIs) {
    auto& access = store->Access();
    EXPECT_TRUE(access.CanSeeAsset(ann, alphaRoot));
    EXPECT_TRUE(access.CanSeeAsset(ann, sub));
    EXPECT_TRUE(access.CanSeeAsset(carol, sub));
    EXPECT_FALSE(access.CanSeeAsset(ann, secretRoot));
    EXPECT_FALSE(access.CanSeeAsset(dave, sub));
    EXPECT_FALSE(access.CanSeeAsset(bob, sub));
}

TEST_F(AccessPolicyTest, UnknownAndMalformedIdsAreNeverSeen) {
    auto& access = store->Access();
    const auto unknown = vantroserver::security::NewId();
    for (const std::string& id : {unknown, std::string("x"), std::string(""), alpha + " "}) {
        EXPECT_FALSE(access.CanSeeAccount(ann, id)) << id;
        EXPECT_FALSE(access.CanSeeTeam(ann, id)) << id;
        EXPECT_FALSE(access.CanSeeProject(ann, id)) << id;
        EXPECT_FALSE(access.CanSeeAsset(ann, id)) << id;
    }
    // Ids of one kind do not pass as another.
    EXPECT_FALSE(access.CanSeeTeam(ann, acme));
    EXPECT_FALSE(access.CanSeeAsset(ann, alpha));
}

TEST_F(AccessPolicyTest, ChangesReachOnlyThoseWhoSeeTheList) {
    auto& access = store->Access();
    EXPECT_TRUE(access.CanSeeChange(ann, Change{1, ChangeKind::AccountList, ann}));
    EXPECT_FALSE(access.CanSeeChange(bob, Change{1, ChangeKind::AccountList, ann}));
    EXPECT_TRUE(access.CanSeeChange(dave, Change{1, ChangeKind::TeamList, acme}));
    EXPECT_FALSE(access.CanSeeChange(AddUser("eve"), Change{1, ChangeKind::TeamList, acme}));
    EXPECT_TRUE(access.CanSeeChange(ann, Change{1, ChangeKind::ProjectList, editors}));
    EXPECT_FALSE(access.CanSeeChange(bob, Change{1, ChangeKind::ProjectList, editors}));
    EXPECT_TRUE(access.CanSeeChange(carol, Change{1, ChangeKind::ProjectList, acme}));
    EXPECT_TRUE(access.CanSeeChange(carol, Change{1, ChangeKind::AssetList, sub}));
    EXPECT_FALSE(access.CanSeeChange(bob, Change{1, ChangeKind::AssetList, sub}));
}

}  // namespace
}  // namespace storetest
