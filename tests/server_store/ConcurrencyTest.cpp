#include <atomic>
#include <thread>
#include <vector>

#include "StoreFixture.h"
#include "security/Pkce.h"
#include "store/StoreError.h"

namespace storetest {
namespace {

using vantroserver::store::PageRequest;
using vantroserver::store::StoreError;

class ConcurrencyTest : public StoreFixture {};

TEST_F(ConcurrencyTest, ParallelFilesNeverOverrunTheStorageLimit) {
    const auto ann = AddUser("ann");
    const auto account = store->Accounts().Add("Acme", ann, 1000);
    const auto team = store->Teams().Add(account.id, "Editors", {ann});
    const auto root = store->Projects().Add(team.id, "Alpha").rootAssetId;

    // 4 threads x 45 files of 10 bytes ask for 800 bytes more than the limit allows.
    constexpr int kThreads = 4;
    constexpr int kFiles = 45;
    std::atomic<int> added{0}, refused{0}, other{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kFiles; ++i) {
                try {
                    store->Assets().AddFile(root, std::to_string(t) + "-" + std::to_string(i), 10);
                    ++added;
                } catch (const StoreError& error) {
                    if (error.GetKind() == StoreError::Kind::StorageLimit) {
                        ++refused;
                    } else {
                        ++other;
                    }
                }
                // Readers run beside the writers.
                store->Assets().Children(root, PageRequest{0, 10});
                store->Access().CanSeeAsset(ann, root);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(other.load(), 0);
    EXPECT_EQ(added.load(), 100);
    EXPECT_EQ(refused.load(), kThreads * kFiles - 100);
    EXPECT_EQ(store->Accounts().Find(account.id)->storageUsed, 1000);
    EXPECT_EQ(store->Assets().Children(root, PageRequest{}).total, 100u);
}

TEST_F(ConcurrencyTest, ARefreshTokenRotatesOnceWhenRacedAgainstItself) {
    const auto ann = AddUser("ann");
    const std::string verifier(43, 'v');
    const auto code =
        store->Tokens().IssueCode({"client", ann, "http://127.0.0.1/cb",
                                   vantroserver::security::Pkce::ChallengeS256(verifier)});
    const auto first = store->Tokens().RedeemCode(code, "client", "http://127.0.0.1/cb", verifier);
    ASSERT_EQ(first.status, vantroserver::store::GrantStatus::Granted);

    std::atomic<int> granted{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            if (store->Tokens().RotateRefreshToken(first.refreshToken, "client").status ==
                vantroserver::store::GrantStatus::Granted) {
                ++granted;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(granted.load(), 1);
    // The losers replayed a rotated token, which revokes the family.
    EXPECT_TRUE(store->Tokens().IsFamilyRevoked(first.familyId));
}

}  // namespace
}  // namespace storetest
