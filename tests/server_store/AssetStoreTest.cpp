#include <algorithm>
#include <limits>

#include "StoreErrorKind.h"
#include "StoreFixture.h"
#include "security/Random.h"

namespace storetest {
namespace {

using vantroserver::store::AssetType;
using vantroserver::store::PageRequest;
using vantroserver::store::StoreError;

class AssetStoreTest : public StoreFixture {
protected:
    AssetStoreTest() {
        owner = AddUser("ann");
        account = store->Accounts().Add("Acme", owner, 10'000).id;
        const auto team = store->Teams().Add(account, "Editors", {owner});
        root = store->Projects().Add(team.id, "Alpha").rootAssetId;
    }

    std::int64_t StorageUsed() { return store->Accounts().Find(account)->storageUsed; }

    std::string owner, account, root;
};

TEST_F(AssetStoreTest, FolderIsMadeInsideAFolder) {
    const auto folder = store->Assets().CreateFolder(root, "Footage");
    EXPECT_EQ(folder.type, AssetType::Folder);
    EXPECT_EQ(folder.parentId, root);
    EXPECT_EQ(folder.filesize, 0);
    const auto found = store->Assets().Find(folder.id);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->name, "Footage");
    EXPECT_EQ(found->accountId, account);
    EXPECT_EQ(found->createdAt, now);
}

TEST_F(AssetStoreTest, ChildrenComeByNameThenIdWithTheirTotal) {
    const auto e = store->Assets().CreateFolder(root, "e");
    const auto b = store->Assets().AddFile(root, "b", 100);
    const auto a1 = store->Assets().CreateFolder(root, "a");
    const auto a2 = store->Assets().AddFile(root, "a", 5);
    const auto c = store->Assets().CreateVersionStack(root, "c");
    const auto children = store->Assets().Children(root, PageRequest{0, 100});
    EXPECT_EQ(children.total, 5u);
    std::vector<std::string> ids;
    for (const auto& child : children.items) {
        ids.push_back(child.id);
    }
    const auto& [firstA, secondA] =
        a1.id < a2.id ? std::pair(a1.id, a2.id) : std::pair(a2.id, a1.id);
    EXPECT_EQ(ids, (std::vector<std::string>{firstA, secondA, b.id, c.id, e.id}));
    EXPECT_EQ(children.items[2].type, AssetType::File);
    EXPECT_EQ(children.items[2].filesize, 100);
    EXPECT_EQ(children.items[3].type, AssetType::VersionStack);
}

TEST_F(AssetStoreTest, PagesOf250ChildrenCoverEachChildOnce) {
    const auto big = store->Assets().CreateFolder(root, "Dailies");
    for (int i = 0; i < 250; ++i) {
        store->Assets().CreateFolder(big.id, "Shot " + std::to_string(1000 + (i * 7919) % 250));
    }
    std::vector<std::string> seen;
    std::string lastName;
    for (std::uint64_t offset = 0; offset < 250; offset += 100) {
        const auto page = store->Assets().Children(big.id, PageRequest{offset, 100});
        EXPECT_EQ(page.total, 250u);
        EXPECT_EQ(page.items.size(), offset == 200 ? 50u : 100u);
        for (const auto& child : page.items) {
            EXPECT_LE(lastName, child.name);
            lastName = child.name;
            seen.push_back(child.id);
        }
    }
    std::sort(seen.begin(), seen.end());
    EXPECT_EQ(std::unique(seen.begin(), seen.end()), seen.end());
    EXPECT_EQ(seen.size(), 250u);
}

TEST_F(AssetStoreTest, HugeOffsetIsAnEmptyPageNotAnError) {
    store->Assets().CreateFolder(root, "a");
    const auto page = store->Assets().Children(root, PageRequest{~std::uint64_t{0}, 100});
    EXPECT_TRUE(page.items.empty());
    EXPECT_EQ(page.total, 1u);
}

TEST_F(AssetStoreTest, UnknownOrMalformedParentHasNoChildren) {
    EXPECT_EQ(store->Assets().Children(vantroserver::security::NewId(), PageRequest{}).total, 0u);
    EXPECT_EQ(store->Assets().Children("'; DROP TABLE assets; --", PageRequest{}).total, 0u);
    EXPECT_FALSE(store->Assets().Find("nope").has_value());
}

TEST_F(AssetStoreTest, FolderRefusesBadParentsAndNames) {
    auto& assets = store->Assets();
    const auto file = assets.AddFile(root, "clip.mov", 1);
    const auto stack = assets.CreateVersionStack(root, "Cut");
    EXPECT_EQ(KindOf([&] { assets.CreateFolder(vantroserver::security::NewId(), "x"); }),
              StoreError::Kind::NotFound);
    EXPECT_EQ(KindOf([&] { assets.CreateFolder(file.id, "x"); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { assets.CreateFolder(stack.id, "x"); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { assets.CreateFolder(root, ""); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { assets.CreateFolder(root, "a/b"); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { assets.CreateFolder(root, "tab\there"); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { assets.CreateFolder(root, " padded"); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { assets.CreateFolder(root, "\xff\xfe"); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { assets.CreateFolder(root, "\xc0\xaf"); }), StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { assets.CreateFolder(root, std::string(256, 'n')); }),
              StoreError::Kind::Invalid);
    EXPECT_NO_THROW(assets.CreateFolder(root, std::string(255, 'n')));
    EXPECT_NO_THROW(assets.CreateFolder(root, "Überschnitt — 第1版"));
    EXPECT_EQ(assets.Children(root, PageRequest{}).total, 4u);
}

TEST_F(AssetStoreTest, FilesCountTowardTheAccountsStorage) {
    store->Assets().AddFile(root, "a.mov", 1200);
    const auto folder = store->Assets().CreateFolder(root, "Sub");
    store->Assets().AddFile(folder.id, "b.mov", 800);
    EXPECT_EQ(StorageUsed(), 2000);
}

TEST_F(AssetStoreTest, FileBeyondTheStorageLimitIsRefusedAndNothingChanges) {
    store->Assets().AddFile(root, "a.mov", 9000);
    EXPECT_EQ(KindOf([&] { store->Assets().AddFile(root, "b.mov", 1001); }),
              StoreError::Kind::StorageLimit);
    EXPECT_EQ(StorageUsed(), 9000);
    EXPECT_EQ(store->Assets().Children(root, PageRequest{}).total, 1u);
    EXPECT_NO_THROW(store->Assets().AddFile(root, "c.mov", 1000));
    EXPECT_EQ(StorageUsed(), 10'000);
    EXPECT_EQ(KindOf([&] {
                  store->Assets().AddFile(root, "d.mov", std::numeric_limits<std::int64_t>::max());
              }),
              StoreError::Kind::StorageLimit);
}

TEST_F(AssetStoreTest, FileRefusesNegativeSizeAndAFileParent) {
    const auto file = store->Assets().AddFile(root, "a.mov", 1);
    EXPECT_EQ(KindOf([&] { store->Assets().AddFile(root, "b.mov", -1); }),
              StoreError::Kind::Invalid);
    EXPECT_EQ(KindOf([&] { store->Assets().AddFile(file.id, "b.mov", 1); }),
              StoreError::Kind::Invalid);
}

TEST_F(AssetStoreTest, VersionStackShowsItsNewestVersionsSize) {
    const auto stack = store->Assets().CreateVersionStack(root, "Cut");
    store->Assets().AddFile(stack.id, "cut_v1.mp4", 300);
    Advance(std::chrono::seconds(1));
    store->Assets().AddFile(stack.id, "cut_v2.mp4", 450);
    EXPECT_EQ(store->Assets().Find(stack.id)->filesize, 450);
    EXPECT_EQ(store->Assets().Children(stack.id, PageRequest{}).total, 2u);
    EXPECT_EQ(StorageUsed(), 750);
}

}  // namespace
}  // namespace storetest
