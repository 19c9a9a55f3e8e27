#include "StoreErrorKind.h"
#include "StoreFixture.h"

namespace storetest {
namespace {

using vantroserver::store::Change;
using vantroserver::store::ChangeKind;

class ChangeJournalTest : public StoreFixture {
protected:
    std::vector<std::pair<ChangeKind, std::string>> ChangesSince(std::int64_t sequence) {
        std::vector<std::pair<ChangeKind, std::string>> result;
        for (const Change& change : store->Changes().After(sequence)) {
            result.emplace_back(change.kind, change.parentId);
        }
        return result;
    }
};

using Entries = std::vector<std::pair<ChangeKind, std::string>>;

TEST_F(ChangeJournalTest, StartsEmpty) {
    EXPECT_EQ(store->Changes().LatestSequence(), 0);
    EXPECT_TRUE(store->Changes().After(0).empty());
}

TEST_F(ChangeJournalTest, EachListChangeIsRecordedWithItsParent) {
    const auto ann = AddUser("ann");
    const auto bob = AddUser("bob");
    const auto carol = AddUser("carol");
    auto mark = store->Changes().LatestSequence();

    const auto account = store->Accounts().Add("Acme", ann, 1000);
    EXPECT_EQ(ChangesSince(mark), (Entries{{ChangeKind::AccountList, ann}}));
    mark = store->Changes().LatestSequence();

    store->Accounts().AddMember(account.id, bob);
    EXPECT_EQ(ChangesSince(mark), (Entries{{ChangeKind::AccountList, bob}}));
    mark = store->Changes().LatestSequence();

    const auto team = store->Teams().Add(account.id, "Editors", {ann});
    EXPECT_EQ(ChangesSince(mark), (Entries{{ChangeKind::TeamList, account.id}}));
    mark = store->Changes().LatestSequence();

    const auto project = store->Projects().Add(team.id, "Alpha");
    EXPECT_EQ(ChangesSince(mark), (Entries{{ChangeKind::ProjectList, team.id}}));
    mark = store->Changes().LatestSequence();

    const auto folder = store->Assets().CreateFolder(project.rootAssetId, "Sub");
    EXPECT_EQ(ChangesSince(mark), (Entries{{ChangeKind::AssetList, project.rootAssetId}}));
    mark = store->Changes().LatestSequence();

    const auto stack = store->Assets().CreateVersionStack(folder.id, "Cut");
    store->Assets().AddFile(stack.id, "v1.mp4", 10);
    EXPECT_EQ(ChangesSince(mark), (Entries{{ChangeKind::AssetList, folder.id},
                                           {ChangeKind::AssetList, stack.id},
                                           {ChangeKind::AssetList, folder.id}}));
    mark = store->Changes().LatestSequence();

    store->Projects().Share(project.id, carol);
    EXPECT_EQ(ChangesSince(mark),
              (Entries{{ChangeKind::ProjectList, account.id}, {ChangeKind::AccountList, carol}}));
}

TEST_F(ChangeJournalTest, JoiningATeamOfANewAccountChangesTheUsersAccountList) {
    const auto ann = AddUser("ann");
    const auto bob = AddUser("bob");
    const auto account = store->Accounts().Add("Acme", ann, 1000);
    const auto team = store->Teams().Add(account.id, "Editors");
    auto mark = store->Changes().LatestSequence();
    store->Teams().AddMember(team.id, bob);
    EXPECT_EQ(ChangesSince(mark),
              (Entries{{ChangeKind::AccountList, bob}, {ChangeKind::TeamList, account.id}}));
    mark = store->Changes().LatestSequence();
    // Already in the account: only the team list changes.
    store->Teams().Add(account.id, "Sales", {bob});
    EXPECT_EQ(ChangesSince(mark), (Entries{{ChangeKind::TeamList, account.id}}));
}

TEST_F(ChangeJournalTest, RefusedWritesLeaveNoEntry) {
    const auto ann = AddUser("ann");
    const auto account = store->Accounts().Add("Acme", ann, 10);
    const auto team = store->Teams().Add(account.id, "Editors", {ann});
    const auto project = store->Projects().Add(team.id, "Alpha");
    const auto mark = store->Changes().LatestSequence();
    KindOf([&] { store->Assets().AddFile(project.rootAssetId, "big.mov", 11); });
    KindOf([&] { store->Assets().CreateFolder(project.rootAssetId, ""); });
    KindOf([&] { store->Teams().AddMember(team.id, ann); });
    EXPECT_EQ(store->Changes().LatestSequence(), mark);
}

TEST_F(ChangeJournalTest, SequencesIncreaseAndPagesAndPruningWork) {
    const auto ann = AddUser("ann");
    for (int i = 0; i < 5; ++i) {
        store->Accounts().Add("A" + std::to_string(i), ann, 1);
    }
    const auto all = store->Changes().After(0);
    ASSERT_EQ(all.size(), 5u);
    for (std::size_t i = 1; i < all.size(); ++i) {
        EXPECT_LT(all[i - 1].sequence, all[i].sequence);
    }
    EXPECT_EQ(store->Changes().LatestSequence(), all.back().sequence);
    const auto firstTwo = store->Changes().After(0, 2);
    ASSERT_EQ(firstTwo.size(), 2u);
    EXPECT_EQ(store->Changes().After(firstTwo.back().sequence).size(), 3u);

    store->Changes().PruneThrough(all[2].sequence);
    const auto rest = store->Changes().After(0);
    ASSERT_EQ(rest.size(), 2u);
    EXPECT_EQ(rest.front().sequence, all[3].sequence);
    // A new entry never reuses a pruned sequence.
    store->Changes().PruneThrough(all.back().sequence);
    store->Accounts().Add("B", ann, 1);
    EXPECT_GT(store->Changes().LatestSequence(), all.back().sequence);
}

TEST_F(ChangeJournalTest, AWriterInAnotherStoreIsSeenByAWatcher) {
    // The admin commands write through their own connection (another process); the server's
    // journal must see those commits.
    auto other = vantroserver::store::Store::Open(directory.Path() / "vantro.db", false,
                                                  vantroserver::store::StoreOptions{1000, {}, {}});
    const auto mark = store->Changes().LatestSequence();
    const auto ann = other->Users().Add({"ann", "pw", "", ""}).id;
    other->Accounts().Add("Acme", ann, 1);
    EXPECT_EQ(ChangesSince(mark), (Entries{{ChangeKind::AccountList, ann}}));
}

}  // namespace
}  // namespace storetest
