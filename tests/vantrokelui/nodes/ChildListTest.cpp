// The child-list setters of the node kinds: every list is stored sorted by name, a list with the
// same nodes delivers nothing, and accounts, workspaces and projects fetch their elements
// eagerly while folders, files and version stacks do not.
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include <support/MainThreadFixture.h>
#include <vantrokelui/nodes/FetchChildrenState.h>
#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/utility/FoldersNotifyingProperty.h>

#include "TestTree.h"

namespace vantrokelui::testing {
namespace {

class ChildListTest : public testsupport::MainThreadFixture {
protected:
    // Observes a folder's Folders and returns the names of every delivery.
    std::shared_ptr<std::vector<std::vector<string>>> WatchFolders(VantroFolder& folder) {
        auto seen = std::make_shared<std::vector<std::vector<string>>>();
        bindings.push_back(
            folder.AddFoldersBinding([seen](const utility::SharedPtrVector<VantroFolder>& folders) {
                seen->push_back(Names(folders));
            }));
        return seen;
    }

    std::vector<std::shared_ptr<utility::DataBinding>> bindings;
};

TEST_F(ChildListTest, ClipTwoSortsBeforeClipTen) {
    auto folder = std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>());
    auto clip10 = MakeNode<VantroFolder>(folder, u"clip 10");
    auto clip2 = MakeNode<VantroFolder>(folder, u"Clip 2");
    folder->SetFolders(List({clip10, clip2}));
    EXPECT_EQ(Names(folder->GetFolders()), (std::vector<string>{u"Clip 2", u"clip 10"}));

    // The other way round in case: neither code-unit order nor a letters-only fold gives this.
    auto upper10 = MakeNode<VantroFolder>(folder, u"Clip 10");
    auto lower2 = MakeNode<VantroFolder>(folder, u"clip 2");
    folder->SetFolders(List({upper10, lower2}));
    EXPECT_EQ(Names(folder->GetFolders()), (std::vector<string>{u"clip 2", u"Clip 10"}));
}

TEST_F(ChildListTest, NamesSortNaturallyAndWithoutRegardToCaseInEveryList) {
    auto user = std::make_shared<VantroUser>();
    auto folder = MakeNode<VantroFolder>(user, u"f");
    const std::vector<std::u16string_view> incoming{u"b", u"A", u"a10", u"C", u"a9", u"a 1"};
    const std::vector<string> expected{u"A", u"a 1", u"a9", u"a10", u"b", u"C"};

    utility::SharedPtrVector<VantroFile> files;
    utility::SharedPtrVector<VantroVersionStack> stacks;
    utility::SharedPtrVector<VantroAccount> accounts;
    for (const auto name : incoming) {
        files.push_back(MakeNode<VantroFile>(folder, name));
        stacks.push_back(MakeNode<VantroVersionStack>(folder, name));
        accounts.push_back(MakeNode<VantroAccount>(user, name));
    }
    folder->SetFiles(files);
    folder->SetVersionStacks(stacks);
    user->SetAccounts(accounts);
    EXPECT_EQ(Names(folder->GetFiles()), expected);
    EXPECT_EQ(Names(folder->GetVersionStacks()), expected);
    EXPECT_EQ(Names(user->GetAccounts()), expected);
}

TEST_F(ChildListTest, WorkspacesAndProjectsAreSortedToo) {
    auto account = std::make_shared<VantroAccount>(std::weak_ptr<VantroNode>());
    auto workspace = MakeNode<VantroWorkspace>(account, u"Team 10");
    auto other = MakeNode<VantroWorkspace>(account, u"team 9");
    account->SetWorkspaces(List({workspace, other}));
    EXPECT_EQ(Names(account->GetWorkspaces()), (std::vector<string>{u"team 9", u"Team 10"}));

    auto promo = MakeNode<VantroProject>(workspace, u"Promo");
    auto archive = MakeNode<VantroProject>(workspace, u"archive");
    workspace->SetProjects(List({promo, archive}));
    EXPECT_EQ(Names(workspace->GetProjects()), (std::vector<string>{u"archive", u"Promo"}));
}

TEST_F(ChildListTest, TheSortedListIsDeliveredToObservers) {
    auto folder = std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>());
    auto seen = WatchFolders(*folder);
    folder->SetFolders(List(
        {MakeNode<VantroFolder>(folder, u"Shot 12"), MakeNode<VantroFolder>(folder, u"shot 3")}));
    EXPECT_TRUE(seen->empty()) << "nothing is delivered inside the setter";
    Pump();
    ASSERT_EQ(seen->size(), 2u);
    EXPECT_TRUE(seen->front().empty()) << "the first delivery is the empty default";
    EXPECT_EQ(seen->back(), (std::vector<string>{u"shot 3", u"Shot 12"}));
}

TEST_F(ChildListTest, WritingTheSameNodesInAnotherOrderDeliversNothing) {
    auto folder = std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>());
    auto a = MakeNode<VantroFolder>(folder, u"A");
    auto b = MakeNode<VantroFolder>(folder, u"B");
    auto c = MakeNode<VantroFolder>(folder, u"C");
    folder->SetFolders(List({a, b, c}));
    auto seen = WatchFolders(*folder);
    Pump();
    ASSERT_EQ(seen->size(), 1u);

    folder->SetFolders(List({c, a, b}));
    folder->SetFolders(List({b, c, a}));
    EXPECT_EQ(Pump(), 0u) << "nothing was even queued";
    EXPECT_EQ(seen->size(), 1u);
    const auto stored = folder->GetFolders();
    ASSERT_EQ(stored.size(), 3u);
    EXPECT_EQ(stored[0], a);
    EXPECT_EQ(stored[1], b);
    EXPECT_EQ(stored[2], c);
}

TEST_F(ChildListTest, AnEqualSizedListOfNewObjectsWithIdenticalNamesDelivers) {
    auto folder = std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>());
    folder->SetFolders(
        List({MakeNode<VantroFolder>(folder, u"A"), MakeNode<VantroFolder>(folder, u"B")}));
    auto seen = WatchFolders(*folder);
    Pump();
    ASSERT_EQ(seen->size(), 1u);

    auto newA = MakeNode<VantroFolder>(folder, u"A");
    auto newB = MakeNode<VantroFolder>(folder, u"B");
    folder->SetFolders(List({newB, newA}));
    Pump();
    ASSERT_EQ(seen->size(), 2u);
    EXPECT_EQ(seen->back(), (std::vector<string>{u"A", u"B"}));
    EXPECT_EQ(folder->GetFolders()[0], newA);
    EXPECT_EQ(folder->GetFolders()[1], newB);
}

TEST_F(ChildListTest, AShorterOrEmptyListDelivers) {
    auto folder = std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>());
    auto a = MakeNode<VantroFolder>(folder, u"A");
    auto b = MakeNode<VantroFolder>(folder, u"B");
    folder->SetFolders(List({a, b}));
    auto seen = WatchFolders(*folder);
    Pump();

    folder->SetFolders(List({b}));
    folder->SetFolders({});
    folder->SetFolders({});
    Pump();
    EXPECT_EQ(*seen, (std::vector<std::vector<string>>{{u"A", u"B"}, {u"B"}, {}}));
}

TEST_F(ChildListTest, AWriterHoldingOnlyTheNamedPropertyStillSorts) {
    auto folder = std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>());
    const std::weak_ptr<FoldersNotifyingProperty> weak =
        std::shared_ptr<FoldersNotifyingProperty>(folder, folder.get());
    weak.lock()->SetFolders(List(
        {MakeNode<VantroFolder>(folder, u"clip 10"), MakeNode<VantroFolder>(folder, u"Clip 2")}));
    EXPECT_EQ(Names(folder->GetFolders()), (std::vector<string>{u"Clip 2", u"clip 10"}));
}

TEST_F(ChildListTest, AccountsAreFetchedEagerlyInIncomingOrderEvenWhenUnchanged) {
    auto log = std::make_shared<std::vector<string>>();
    auto user = std::make_shared<VantroUser>();
    auto zed = MakeNode<Recording<VantroAccount>>(user, u"Zed", log);
    auto amy = MakeNode<Recording<VantroAccount>>(user, u"Amy", log);
    auto max = MakeNode<Recording<VantroAccount>>(user, u"Max", log);

    user->SetAccounts(List<VantroAccount>({zed, amy, max}));
    EXPECT_EQ(*log, (std::vector<string>{u"Zed", u"Amy", u"Max"})) << "incoming, not sorted";
    EXPECT_EQ(Names(user->GetAccounts()), (std::vector<string>{u"Amy", u"Max", u"Zed"}));
    EXPECT_EQ(amy->GetFetchChildrenState(), FetchChildrenState::Fetching);

    auto seen = std::make_shared<int>(0);
    auto binding = user->AddAccountsBinding([seen](const auto&) { ++*seen; });
    Pump();
    log->clear();
    user->SetAccounts(List<VantroAccount>({max, zed, amy}));  // the same accounts
    EXPECT_EQ(*log, (std::vector<string>{u"Max", u"Zed", u"Amy"}));
    EXPECT_EQ(Pump(), 0u) << "unchanged: nothing delivered, yet every account was fetched";
    EXPECT_EQ(zed->fetches, 2);
}

TEST_F(ChildListTest, WorkspacesAreFetchedEagerlyInIncomingOrderEvenWhenUnchanged) {
    auto log = std::make_shared<std::vector<string>>();
    auto account = std::make_shared<VantroAccount>(std::weak_ptr<VantroNode>());
    auto b = MakeNode<Recording<VantroWorkspace>>(account, u"b", log);
    auto a = MakeNode<Recording<VantroWorkspace>>(account, u"A", log);

    account->SetWorkspaces(List<VantroWorkspace>({b, a}));
    account->SetWorkspaces(List<VantroWorkspace>({a, b}));
    EXPECT_EQ(*log, (std::vector<string>{u"b", u"A", u"A", u"b"}));
    EXPECT_EQ(a->fetches, 2);
    EXPECT_EQ(b->GetFetchChildrenState(), FetchChildrenState::Fetching);
}

TEST_F(ChildListTest, ProjectsAreFetchedEagerlyInIncomingOrderEvenWhenUnchanged) {
    auto log = std::make_shared<std::vector<string>>();
    auto workspace = std::make_shared<VantroWorkspace>(std::weak_ptr<VantroNode>());
    auto p2 = MakeNode<Recording<VantroProject>>(workspace, u"Promo 2", log);
    auto p10 = MakeNode<Recording<VantroProject>>(workspace, u"promo 10", log);
    auto p1 = MakeNode<Recording<VantroProject>>(workspace, u"Promo 1", log);

    workspace->SetProjects(List<VantroProject>({p10, p2, p1}));
    EXPECT_EQ(*log, (std::vector<string>{u"promo 10", u"Promo 2", u"Promo 1"}));
    workspace->SetProjects(List<VantroProject>({p1, p10, p2}));
    EXPECT_EQ(log->size(), 6u);
    EXPECT_EQ((std::vector<string>(log->begin() + 3, log->end())),
              (std::vector<string>{u"Promo 1", u"promo 10", u"Promo 2"}));
    EXPECT_EQ(Names(workspace->GetProjects()),
              (std::vector<string>{u"Promo 1", u"Promo 2", u"promo 10"}));
}

TEST_F(ChildListTest, EagerFetchingRunsDownTheTreeAsEachListArrives) {
    // The back ends fill a child list from within a fetch; here the fill is immediate.
    class FillingAccount : public VantroAccount {
    public:
        using VantroAccount::VantroAccount;
        void FetchChildren() override {
            VantroAccount::FetchChildren();
            SetWorkspaces(List<VantroWorkspace>({workspace}));
        }
        std::shared_ptr<VantroWorkspace> workspace;
    };
    auto log = std::make_shared<std::vector<string>>();
    auto user = std::make_shared<VantroUser>();
    auto account = MakeNode<FillingAccount>(user, u"Studio");
    auto workspace = MakeNode<Recording<VantroWorkspace>>(account, u"Team", log);
    account->workspace = workspace;

    user->SetAccounts(List<VantroAccount>({account}));
    EXPECT_EQ(*log, std::vector<string>{u"Team"});
    EXPECT_EQ(workspace->GetFetchChildrenState(), FetchChildrenState::Fetching);
}

TEST_F(ChildListTest, FoldersFilesAndVersionStacksAreNotFetchedEagerly) {
    auto log = std::make_shared<std::vector<string>>();
    auto folder = std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>());
    auto sub = MakeNode<Recording<VantroFolder>>(folder, u"Sub", log);
    auto file = MakeNode<Recording<VantroFile>>(folder, u"a.mov", log);
    auto stack = MakeNode<Recording<VantroVersionStack>>(folder, u"b.mov", log);

    folder->SetFolders(List<VantroFolder>({sub}));
    folder->SetFiles(List<VantroFile>({file}));
    folder->SetVersionStacks(List<VantroVersionStack>({stack}));
    EXPECT_TRUE(log->empty());
    EXPECT_EQ(sub->GetFetchChildrenState(), FetchChildrenState::NotFetched);
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::NotFetched);
}

TEST_F(ChildListTest, SettingARootFolderFetchesNothing) {
    auto log = std::make_shared<std::vector<string>>();
    auto project = std::make_shared<VantroProject>(std::weak_ptr<VantroNode>());
    auto root = MakeNode<Recording<VantroFolder>>(project, u"Promo", log);
    project->SetRootFolder(root);
    EXPECT_TRUE(log->empty());
    EXPECT_EQ(project->GetRootFolder(), root);
}

TEST_F(ChildListTest, ReplacedChildrenDieWithTheListThatHeldThem) {
    auto folder = std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>());
    auto child = MakeNode<VantroFolder>(folder, u"A");
    const std::weak_ptr<VantroFolder> weakChild = child;
    folder->SetFolders(List({child}));
    child.reset();
    Pump();  // the queued delivery holds the list too
    EXPECT_FALSE(weakChild.expired()) << "the list owns its children";

    folder->SetFolders(List({MakeNode<VantroFolder>(folder, u"A")}));
    Pump();
    EXPECT_TRUE(weakChild.expired());
}

}  // namespace
}  // namespace vantrokelui::testing
