#include "api/WholeFileHash.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>
#include <vector>

#include "api/WholeFileHashes.h"
#include "support/TemporaryDirectory.h"

namespace {

using vantroserver::api::WholeFileHash;
using vantroserver::api::WholeFileHashes;
using vantroserver::security::Sha256Stream;

constexpr std::int64_t kPartSize = 3 * 1024 * 1024 + 17;  // several read blocks, unaligned
constexpr std::int64_t kFileSize = 3 * kPartSize + 1000;  // a short last part

std::string Bytes(std::size_t size, std::uint64_t seed) {
    std::string bytes(size, '\0');
    std::uint64_t state = seed;
    for (char& c : bytes) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        c = static_cast<char>(state >> 56);
    }
    return bytes;
}

std::string Sha256(std::string_view bytes) {
    Sha256Stream hash;
    hash.Update(bytes);
    return hash.FinishHex();
}

class WholeFileHashTest : public ::testing::Test {
protected:
    WholeFileHashTest() {
        upload.id = "upload";
        upload.filesize = kFileSize;
        upload.partSize = kPartSize;
        upload.partCount = 4;
        content = Bytes(static_cast<std::size_t>(kFileSize), 1);
        dataFile = directory.Write("data", content);
        hash = std::make_shared<WholeFileHash>(
            upload, dataFile, [this](std::function<void()> task) { posted.push_back(task); });
    }

    /// Runs the folds posted so far, as the worker would.
    void RunPosted() {
        auto tasks = std::move(posted);
        posted.clear();
        for (auto& task : tasks) {
            task();
        }
    }

    /// Sends part `number` again with other bytes: marks it, rewrites it on disk, records it.
    void Resend(std::int64_t number, std::uint64_t seed) {
        hash->PartStarting(number);
        const auto offset = static_cast<std::size_t>(upload.OffsetOfPart(number));
        const auto size = static_cast<std::size_t>(upload.SizeOfPart(number));
        content.replace(offset, size, Bytes(size, seed));
        directory.Write("data", content);
        hash->PartRecorded(number);
    }

    testsupport::TemporaryDirectory directory;
    vantroserver::store::Upload upload;
    std::string content;
    std::filesystem::path dataFile;
    std::vector<std::function<void()>> posted;
    std::shared_ptr<WholeFileHash> hash;
};

TEST_F(WholeFileHashTest, FoldsPartsInOrderAsTheyArrive) {
    hash->PartRecorded(1);
    ASSERT_EQ(posted.size(), 1u);
    EXPECT_EQ(hash->FoldedBytes(), 0u);  // nothing on the recording thread
    RunPosted();
    EXPECT_EQ(hash->FoldedBytes(), static_cast<std::uint64_t>(kPartSize));
    for (std::int64_t part = 2; part <= 4; ++part) {
        hash->PartRecorded(part);
        RunPosted();
    }
    EXPECT_EQ(hash->FoldedBytes(), static_cast<std::uint64_t>(kFileSize));
    EXPECT_EQ(hash->Finish(), Sha256(content));
}

TEST_F(WholeFileHashTest, PartsAfterTheFrontierWaitAndAreFoldedInOneGo) {
    hash->PartRecorded(3);
    hash->PartRecorded(4);
    hash->PartRecorded(2);
    EXPECT_TRUE(posted.empty());
    hash->PartRecorded(1);
    ASSERT_EQ(posted.size(), 1u);
    RunPosted();
    EXPECT_EQ(hash->FoldedBytes(), static_cast<std::uint64_t>(kFileSize));
    EXPECT_EQ(hash->Finish(), Sha256(content));
}

TEST_F(WholeFileHashTest, FinishHashesWhatIsLeftAfterAGap) {
    hash->PartRecorded(1);
    hash->PartRecorded(3);
    RunPosted();
    EXPECT_EQ(hash->FoldedBytes(), static_cast<std::uint64_t>(kPartSize));
    hash->PartRecorded(2);
    hash->PartRecorded(4);  // their fold is posted but completion comes first
    EXPECT_EQ(hash->Finish(), Sha256(content));
    RunPosted();  // the late fold leaves the finished digest alone
    EXPECT_EQ(hash->FoldedBytes(), static_cast<std::uint64_t>(kPartSize));
}

TEST_F(WholeFileHashTest, ResendingAFoldedPartHashesTheFileFromTheStart) {
    for (std::int64_t part = 1; part <= 2; ++part) {
        hash->PartRecorded(part);
        RunPosted();
    }
    const std::string before = Sha256(content);
    Resend(1, 7);
    hash->PartRecorded(3);
    hash->PartRecorded(4);
    RunPosted();
    const std::string after = Sha256(content);
    ASSERT_NE(before, after);
    EXPECT_EQ(hash->Finish(), after);
}

TEST_F(WholeFileHashTest, ResendingAPartNotYetFoldedKeepsTheRunningDigest) {
    hash->PartRecorded(1);
    hash->PartRecorded(3);
    RunPosted();
    Resend(3, 9);
    hash->PartRecorded(2);
    hash->PartRecorded(4);
    RunPosted();
    EXPECT_EQ(hash->FoldedBytes(), static_cast<std::uint64_t>(kFileSize));
    EXPECT_EQ(hash->Finish(), Sha256(content));
}

TEST_F(WholeFileHashTest, FinishWhileAFoldRunsGivesTheFilesDigest) {
    for (int round = 0; round < 20; ++round) {
        auto running = std::make_shared<WholeFileHash>(
            upload, dataFile, [this](std::function<void()> task) { posted.push_back(task); });
        for (std::int64_t part = 4; part >= 1; --part) {
            running->PartRecorded(part);
        }
        ASSERT_EQ(posted.size(), 1u);
        auto fold = std::async(std::launch::async, std::move(posted.front()));
        posted.clear();
        EXPECT_EQ(running->Finish(), Sha256(content)) << "round " << round;
        fold.get();
    }
}

TEST_F(WholeFileHashTest, AStoppedDigestFoldsNothing) {
    hash->PartRecorded(1);
    hash->Stop();
    RunPosted();
    hash->PartRecorded(2);
    EXPECT_TRUE(posted.empty());
    EXPECT_EQ(hash->FoldedBytes(), 0u);
}

TEST(WholeFileHashes, FoldsOnItsWorkerAndFinishesWithTheFilesDigest) {
    testsupport::TemporaryDirectory directory;
    vantroserver::store::Upload upload;
    upload.id = "u1";
    upload.filesize = kFileSize;
    upload.partSize = kPartSize;
    upload.partCount = 4;
    const std::string content = Bytes(static_cast<std::size_t>(kFileSize), 3);
    const auto dataFile = directory.Write("u1", content);
    WholeFileHashes hashes;
    hashes.Begin(upload, dataFile);
    for (std::int64_t part = 1; part <= 4; ++part) {
        hashes.PartStarting(upload.id, part);
        hashes.PartRecorded(upload.id, part);
    }
    EXPECT_EQ(hashes.Finish(upload, dataFile), Sha256(content));
    // The digest went with completion; a second completion reads the whole file.
    EXPECT_EQ(hashes.Finish(upload, dataFile), Sha256(content));
}

TEST(WholeFileHashes, AnUploadWithoutARunningDigestIsHashedWhole) {
    testsupport::TemporaryDirectory directory;
    vantroserver::store::Upload upload;
    upload.id = "u2";
    upload.filesize = 5000;
    upload.partSize = 1000;
    upload.partCount = 5;
    const std::string content = Bytes(5000, 5);
    const auto dataFile = directory.Write("u2", content);
    WholeFileHashes hashes;
    hashes.PartRecorded(upload.id, 1);  // unknown: ignored
    EXPECT_EQ(hashes.Finish(upload, dataFile), Sha256(content));
}

}  // namespace
