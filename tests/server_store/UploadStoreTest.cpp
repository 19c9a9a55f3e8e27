#include <chrono>

#include "StoreErrorKind.h"
#include "StoreFixture.h"
#include "security/Random.h"

namespace storetest {
namespace {

using vantroserver::store::AssetType;
using vantroserver::store::StoreError;
using vantroserver::store::UploadStore;

constexpr std::int64_t kMiB = 1024 * 1024;
constexpr std::chrono::seconds kDay{86400};
const std::string kDigest(64, 'd');

class UploadStoreTest : public StoreFixture {
protected:
    UploadStoreTest() {
        owner = AddUser("ann");
        account = store->Accounts().Add("Acme", owner, 100 * kMiB).id;
        const auto team = store->Teams().Add(account, "Editors", {owner});
        root = store->Projects().Add(team.id, "Alpha").rootAssetId;
    }

    UploadStore::NewUpload Request(std::int64_t size, std::string autoversion = {}) {
        UploadStore::NewUpload request;
        request.userId = owner;
        request.folderId = root;
        request.name = "clip.mov";
        request.filesize = size;
        request.autoversionId = std::move(autoversion);
        return request;
    }

    /// Records every part of `upload` with a made-up checksum.
    void RecordAll(const vantroserver::store::Upload& upload) {
        for (std::int64_t n = 1; n <= upload.partCount; ++n) {
            store->Uploads().RecordPart(upload.id, n, upload.SizeOfPart(n), std::string(64, 'a'));
        }
    }

    std::string owner, account, root;
};

TEST_F(UploadStoreTest, PartsAreCutAtThePartSizeWithASmallerLastOne) {
    const auto upload = store->Uploads().Create(Request(20 * kMiB + 1), kDay);
    EXPECT_EQ(upload.partSize, 8 * kMiB);
    EXPECT_EQ(upload.partCount, 3);
    EXPECT_EQ(upload.SizeOfPart(3), 4 * kMiB + 1);
    EXPECT_EQ(upload.OffsetOfPart(3), 16 * kMiB);
    EXPECT_EQ(store->Uploads().Create(Request(0), kDay).partCount, 1);
}

TEST_F(UploadStoreTest, AnUploadExpiresByTheClockAndTheSweepRemovesIt) {
    const auto upload = store->Uploads().Create(Request(60 * kMiB), kDay);
    EXPECT_THROW(store->Uploads().Create(Request(60 * kMiB), kDay), StoreError);
    Advance(std::chrono::hours(23));
    EXPECT_TRUE(store->Uploads().Find(upload.id).has_value());
    EXPECT_TRUE(store->Uploads().RemoveExpired().empty());
    Advance(std::chrono::hours(1));
    EXPECT_FALSE(store->Uploads().Find(upload.id).has_value());
    EXPECT_EQ(KindOf([&] { store->Uploads().RecordPart(upload.id, 1, 8 * kMiB, "x"); }),
              StoreError::Kind::NotFound);
    // An expired upload no longer reserves storage, even before the sweep.
    const auto next = store->Uploads().Create(Request(60 * kMiB), kDay);
    EXPECT_EQ(store->Uploads().RemoveExpired(), std::vector<std::string>{upload.id});
    EXPECT_TRUE(store->Uploads().Find(next.id).has_value());
}

TEST_F(UploadStoreTest, CompletionMakesTheFileAndCountsItsStorage) {
    const auto upload = store->Uploads().Create(Request(10 * kMiB), kDay);
    RecordAll(upload);
    std::string placed;
    const auto done = store->Uploads().Complete(
        upload.id, kDigest, [&](const vantroserver::store::Asset& file) { placed = file.id; });
    EXPECT_EQ(done.file.id, placed);
    EXPECT_EQ(done.file.parentId, root);
    EXPECT_EQ(done.file.filesize, 10 * kMiB);
    EXPECT_TRUE(done.versionStackId.empty());
    EXPECT_EQ(store->Accounts().Find(account)->storageUsed, 10 * kMiB);
    EXPECT_FALSE(store->Uploads().Find(upload.id).has_value());
}

TEST_F(UploadStoreTest, AFailureToPlaceTheBytesLeavesEverythingAsItWas) {
    const auto upload = store->Uploads().Create(Request(1000), kDay);
    RecordAll(upload);
    EXPECT_THROW(store->Uploads().Complete(upload.id, kDigest,
                                           [](const auto&) { throw std::runtime_error("disk"); }),
                 std::runtime_error);
    EXPECT_TRUE(store->Uploads().Find(upload.id).has_value());
    EXPECT_EQ(store->Uploads().Parts(upload.id).size(), 1u);
    EXPECT_EQ(store->Assets().Children(root, {0, 10}).total, 0u);
    EXPECT_EQ(store->Accounts().Find(account)->storageUsed, 0);
}

TEST_F(UploadStoreTest, MissingPartsRefuseCompletion) {
    const auto upload = store->Uploads().Create(Request(20 * kMiB), kDay);
    store->Uploads().RecordPart(upload.id, 1, 8 * kMiB, std::string(64, 'a'));
    EXPECT_EQ(KindOf([&] { store->Uploads().Complete(upload.id, kDigest, [](const auto&) {}); }),
              StoreError::Kind::Invalid);
}

TEST_F(UploadStoreTest, AutoversionMakesOneStackAndNumbersTheVersions) {
    const std::string stack = vantroserver::security::NewId();
    const auto first = store->Uploads().Create(Request(100, stack), kDay);
    const auto second = store->Uploads().Create(Request(200, stack), kDay);
    RecordAll(first);
    RecordAll(second);
    const auto a = store->Uploads().Complete(first.id, kDigest, [](const auto&) {});
    const auto b = store->Uploads().Complete(second.id, kDigest, [](const auto&) {});
    EXPECT_TRUE(a.stackCreated);
    EXPECT_FALSE(b.stackCreated);
    EXPECT_EQ(a.file.version, 1);
    EXPECT_EQ(b.file.version, 2);
    EXPECT_EQ(b.file.parentId, stack);
    const auto made = store->Assets().Find(stack);
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(made->type, AssetType::VersionStack);
    EXPECT_EQ(made->filesize, 200);
    EXPECT_EQ(store->Assets().Children(root, {0, 10}).total, 1u);
}

TEST_F(UploadStoreTest, AnAutoversionIdOfAnotherKindIsAConflict) {
    const auto folder = store->Assets().CreateFolder(root, "Footage");
    EXPECT_EQ(KindOf([&] { store->Uploads().Create(Request(1, folder.id), kDay); }),
              StoreError::Kind::Conflict);
    EXPECT_EQ(KindOf([&] { store->Uploads().Create(Request(1, "not-an-id"), kDay); }),
              StoreError::Kind::Invalid);
}

TEST_F(UploadStoreTest, ReservationsCountAgainstTheLimitUntilRemoved) {
    const auto first = store->Uploads().Create(Request(70 * kMiB), kDay);
    EXPECT_EQ(KindOf([&] { store->Uploads().Create(Request(40 * kMiB), kDay); }),
              StoreError::Kind::StorageLimit);
    EXPECT_TRUE(store->Uploads().Remove(first.id));
    EXPECT_FALSE(store->Uploads().Remove(first.id));
    EXPECT_NO_THROW(store->Uploads().Create(Request(40 * kMiB), kDay));
}

TEST_F(UploadStoreTest, ARecordedPartCanBeReplacedOrForgotten) {
    const auto upload = store->Uploads().Create(Request(10 * kMiB), kDay);
    store->Uploads().RecordPart(upload.id, 2, 2 * kMiB, std::string(64, 'a'));
    store->Uploads().RecordPart(upload.id, 2, 2 * kMiB, std::string(64, 'b'));
    auto parts = store->Uploads().Parts(upload.id);
    ASSERT_EQ(parts.size(), 1u);
    EXPECT_EQ(parts[0].sha256, std::string(64, 'b'));
    store->Uploads().ForgetPart(upload.id, 2);
    EXPECT_TRUE(store->Uploads().Parts(upload.id).empty());
    EXPECT_EQ(KindOf([&] { store->Uploads().RecordPart(upload.id, 2, 5, "x"); }),
              StoreError::Kind::Invalid);
}

TEST_F(UploadStoreTest, ACompletionIsRememberedForItsUserAndDigestUntilTheUploadWouldExpire) {
    const auto upload = store->Uploads().Create(Request(1000), kDay);
    RecordAll(upload);
    const auto done = store->Uploads().Complete(upload.id, kDigest, [](const auto&) {});
    const auto again = store->Uploads().FindCompleted(upload.id, owner, kDigest);
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(again->file.id, done.file.id);
    EXPECT_EQ(again->file.filesize, 1000);
    EXPECT_FALSE(again->stackCreated);
    EXPECT_FALSE(store->Uploads().FindCompleted(upload.id, AddUser("bob"), kDigest));
    EXPECT_FALSE(store->Uploads().FindCompleted(upload.id, owner, std::string(64, 'e')));
    EXPECT_FALSE(store->Uploads().FindCompleted("not an id", owner, kDigest));
    Advance(kDay);
    EXPECT_FALSE(store->Uploads().FindCompleted(upload.id, owner, kDigest));
    // The sweep forgets it for good: turning the clock back does not bring it back.
    store->Uploads().RemoveExpired();
    Advance(-kDay);
    EXPECT_FALSE(store->Uploads().FindCompleted(upload.id, owner, kDigest));
}

TEST_F(UploadStoreTest, ARememberedCompletionNamesItsStack) {
    const std::string stack = vantroserver::security::NewId();
    const auto upload = store->Uploads().Create(Request(100, stack), kDay);
    RecordAll(upload);
    store->Uploads().Complete(upload.id, kDigest, [](const auto&) {});
    const auto again = store->Uploads().FindCompleted(upload.id, owner, kDigest);
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(again->versionStackId, stack);
    EXPECT_EQ(again->file.version, 1);
    EXPECT_EQ(again->file.parentId, stack);
}

}  // namespace
}  // namespace storetest
