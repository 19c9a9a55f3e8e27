#include "StoreErrorKind.h"
#include "StoreFixture.h"
#include "security/Random.h"

namespace storetest {
namespace {

using vantroserver::store::PageRequest;
using vantroserver::store::StoreError;

class ReviewLinkStoreTest : public StoreFixture {
protected:
    ReviewLinkStoreTest() {
        owner = AddUser("ann");
        const auto account = store->Accounts().Add("Acme", owner, 1'000'000).id;
        const auto team = store->Teams().Add(account, "Editors", {owner});
        project = store->Projects().Add(team.id, "Alpha").id;
        root = store->Projects().Find(project)->rootAssetId;
        otherRoot = store->Projects().Add(team.id, "Beta").rootAssetId;
    }

    std::string owner, project, root, otherRoot;
};

TEST_F(ReviewLinkStoreTest, ALinkGetsAnUnguessableTokenOfItsOwn) {
    const auto first = store->ReviewLinks().Create(project, owner, "Cut 1");
    const auto second = store->ReviewLinks().Create(project, owner, "Cut 1");
    EXPECT_EQ(first.token.size(), 43u);  // 32 random bytes in base64url.
    EXPECT_NE(first.token, second.token);
    EXPECT_EQ(first.itemCount, 0);
    const auto found = store->ReviewLinks().FindByToken(first.token);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->id, first.id);
    EXPECT_EQ(found->createdAt, now);
    EXPECT_FALSE(store->ReviewLinks().FindByToken(first.token.substr(1) + "A").has_value());
    EXPECT_FALSE(store->ReviewLinks().FindByToken("../etc").has_value());
}

TEST_F(ReviewLinkStoreTest, CreationRefusesUnknownProjectsAndBadNames) {
    EXPECT_EQ(
        KindOf([&] { store->ReviewLinks().Create(vantroserver::security::NewId(), owner, "x"); }),
        StoreError::Kind::NotFound);
    EXPECT_EQ(KindOf([&] { store->ReviewLinks().Create(project, owner, ""); }),
              StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { store->ReviewLinks().Create(project, owner, std::string(256, 'a')); }),
              StoreError::Kind::Invalid);
}

TEST_F(ReviewLinkStoreTest, ItemsKeepTheOrderOfAddingAndAreNotAddedTwice) {
    const auto link = store->ReviewLinks().Create(project, owner, "Cut");
    const auto b = store->Assets().AddFile(root, "b.mp4", 10).id;
    const auto a = store->Assets().AddFile(root, "a.mp4", 20).id;
    store->ReviewLinks().AddItems(link.id, {b, a});
    store->ReviewLinks().AddItems(link.id, {a, b});
    const auto items = store->ReviewLinks().Items(link.id);
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0].added.id, b);
    EXPECT_EQ(items[1].added.id, a);
    EXPECT_EQ(items[1].current->id, a);
    EXPECT_FALSE(items[0].versionStack.has_value());
    EXPECT_EQ(store->ReviewLinks().Find(link.id)->itemCount, 2);
}

TEST_F(ReviewLinkStoreTest, FoldersAndAssetsOfOtherProjectsAreRefusedAllOrNothing) {
    const auto link = store->ReviewLinks().Create(project, owner, "Cut");
    const auto file = store->Assets().AddFile(root, "a.mp4", 10).id;
    const auto folder = store->Assets().CreateFolder(root, "Footage").id;
    const auto elsewhere = store->Assets().AddFile(otherRoot, "b.mp4", 10).id;
    EXPECT_EQ(KindOf([&] {
                  store->ReviewLinks().AddItems(link.id, {file, folder});
              }),
              StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] {
                  store->ReviewLinks().AddItems(link.id, {file, elsewhere});
              }),
              StoreError::Kind::NotFound);
    EXPECT_EQ(KindOf([&] { store->ReviewLinks().AddItems(link.id, {"not-an-id"}); }),
              StoreError::Kind::NotFound);
    EXPECT_TRUE(store->ReviewLinks().Items(link.id).empty());
}

TEST_F(ReviewLinkStoreTest, AStackedItemShowsTheNewestVersionWhenRead) {
    const auto link = store->ReviewLinks().Create(project, owner, "Cut");
    const auto stack = store->Assets().CreateVersionStack(root, "shot.mp4").id;
    const auto v1 = store->Assets().AddFile(stack, "shot.mp4", 10).id;
    // Added as the file of version 1, still shown as the stack's newest.
    store->ReviewLinks().AddItems(link.id, {v1});
    EXPECT_EQ(store->ReviewLinks().Items(link.id)[0].current->id, v1);
    const auto v2 = store->Assets().AddFile(stack, "shot.mp4", 12).id;
    const auto items = store->ReviewLinks().Items(link.id);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].added.id, v1);
    EXPECT_EQ(items[0].current->id, v2);
    EXPECT_EQ(items[0].current->version, 2);
    EXPECT_EQ(items[0].versionStack->id, stack);
    EXPECT_EQ(items[0].versionCount, 2);
    const auto versions = store->ReviewLinks().Versions(stack);
    ASSERT_EQ(versions.size(), 2u);
    EXPECT_EQ(versions[0].id, v2);
    EXPECT_EQ(versions[1].id, v1);
}

TEST_F(ReviewLinkStoreTest, AnEmptyStackHasNothingToShowYet) {
    const auto link = store->ReviewLinks().Create(project, owner, "Cut");
    const auto stack = store->Assets().CreateVersionStack(root, "shot.mp4").id;
    store->ReviewLinks().AddItems(link.id, {stack});
    const auto items = store->ReviewLinks().Items(link.id);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_FALSE(items[0].current.has_value());
    const auto v1 = store->Assets().AddFile(stack, "shot.mp4", 10).id;
    EXPECT_EQ(store->ReviewLinks().Items(link.id)[0].current->id, v1);
}

TEST_F(ReviewLinkStoreTest, ALinkHoldsItsFilesAndEveryVersionOfItsStacks) {
    const auto link = store->ReviewLinks().Create(project, owner, "Cut");
    const auto stack = store->Assets().CreateVersionStack(root, "shot.mp4").id;
    const auto v1 = store->Assets().AddFile(stack, "shot.mp4", 10).id;
    const auto loose = store->Assets().AddFile(root, "loose.mp4", 10).id;
    const auto neighbour = store->Assets().AddFile(root, "neighbour.mp4", 10).id;
    store->ReviewLinks().AddItems(link.id, {loose, stack});
    const auto v2 = store->Assets().AddFile(stack, "shot.mp4", 10).id;
    EXPECT_TRUE(store->ReviewLinks().HoldsFile(link.id, loose));
    EXPECT_TRUE(store->ReviewLinks().HoldsFile(link.id, v1));
    EXPECT_TRUE(store->ReviewLinks().HoldsFile(link.id, v2));
    EXPECT_FALSE(store->ReviewLinks().HoldsFile(link.id, neighbour));
    EXPECT_FALSE(store->ReviewLinks().HoldsFile(link.id, stack));  // Not a file.

    // A stacked file added on its own opens the whole stack, but nothing beside it.
    const auto other = store->ReviewLinks().Create(project, owner, "Other");
    store->ReviewLinks().AddItems(other.id, {v1});
    EXPECT_TRUE(store->ReviewLinks().HoldsFile(other.id, v2));
    EXPECT_FALSE(store->ReviewLinks().HoldsFile(other.id, loose));
}

TEST_F(ReviewLinkStoreTest, AProjectsLinksArePagedByNameThenId) {
    for (const char* name : {"c", "a", "b"}) {
        store->ReviewLinks().Create(project, owner, name);
    }
    const auto first = store->ReviewLinks().ListForProject(project, PageRequest{0, 2});
    EXPECT_EQ(first.total, 3u);
    ASSERT_EQ(first.items.size(), 2u);
    EXPECT_EQ(first.items[0].name, "a");
    EXPECT_EQ(first.items[1].name, "b");
    const auto second = store->ReviewLinks().ListForProject(project, PageRequest{2, 2});
    ASSERT_EQ(second.items.size(), 1u);
    EXPECT_EQ(second.items[0].name, "c");
}

}  // namespace
}  // namespace storetest
