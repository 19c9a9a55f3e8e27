// The node contract: kinds and tags, the order in which each kind lists its children, fetch
// states, and finding a node by id.
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <support/MainThreadFixture.h>
#include <vantrokelui/nodes/FetchChildrenState.h>
#include <vantrokelui/utility/DataBindingTarget.h>

#include "TestTree.h"

namespace vantrokelui::testing {
namespace {

using kelcore::utility::Guid;

class VantroNodeTest : public testsupport::MainThreadFixture {};

// Raw addresses of `nodes` as VantroNode, for comparing child lists by identity.
std::vector<const VantroNode*> Identities(const utility::SharedPtrVector<VantroNode>& nodes) {
    std::vector<const VantroNode*> identities;
    for (const auto& node : nodes) {
        identities.push_back(node.get());
    }
    return identities;
}

TEST_F(VantroNodeTest, EachKindReportsItsFourCharacterTag) {
    StudioTree tree;
    auto file = MakeNode<VantroFile>(tree.cuts, u"a.mov");
    auto stack = MakeNode<VantroVersionStack>(tree.cuts, u"b.mov");
    EXPECT_EQ(tree.user->GetTypeTag(), u"User");
    EXPECT_EQ(tree.studio->GetTypeTag(), u"Acct");
    EXPECT_EQ(tree.team->GetTypeTag(), u"Wksp");
    EXPECT_EQ(tree.promo->GetTypeTag(), u"Proj");
    EXPECT_EQ(tree.cuts->GetTypeTag(), u"Fold");
    EXPECT_EQ(stack->GetTypeTag(), u"Vers");
    EXPECT_EQ(file->GetTypeTag(), u"File");
    // Through the base, as tree walks call it.
    const std::shared_ptr<VantroNode> asNode = tree.team;
    EXPECT_EQ(asNode->GetTypeTag(), u"Wksp");
}

TEST_F(VantroNodeTest, AFolderListsItsFilesThenVersionStacksThenFolders) {
    StudioTree tree;
    auto file = MakeNode<VantroFile>(tree.cuts, u"a.mov");
    auto stack = MakeNode<VantroVersionStack>(tree.cuts, u"b.mov");
    auto sub = MakeNode<VantroFolder>(tree.cuts, u"0 first by name");
    tree.cuts->SetFolders(List({sub}));
    tree.cuts->SetVersionStacks(List({stack}));
    tree.cuts->SetFiles(List({file}));

    const std::vector<const VantroNode*> expected{file.get(), stack.get(), sub.get()};
    EXPECT_EQ(Identities(tree.cuts->GetChildren()), expected);
}

TEST_F(VantroNodeTest, AFolderListsEachKindInItsSortedOrder) {
    StudioTree tree;
    auto fileB = MakeNode<VantroFile>(tree.cuts, u"b.mov");
    auto fileA = MakeNode<VantroFile>(tree.cuts, u"A.mov");
    auto folderZ = MakeNode<VantroFolder>(tree.cuts, u"z");
    auto folderY = MakeNode<VantroFolder>(tree.cuts, u"Y");
    tree.cuts->SetFiles(List({fileB, fileA}));
    tree.cuts->SetFolders(List({folderZ, folderY}));

    const std::vector<const VantroNode*> expected{fileA.get(), fileB.get(), folderY.get(),
                                                  folderZ.get()};
    EXPECT_EQ(Identities(tree.cuts->GetChildren()), expected);
}

TEST_F(VantroNodeTest, AProjectListsItsRootFolderOrNothing) {
    StudioTree tree;
    auto fresh = MakeNode<VantroProject>(tree.team, u"Fresh");
    EXPECT_TRUE(fresh->GetChildren().empty());

    const std::vector<const VantroNode*> expected{tree.root.get()};
    EXPECT_EQ(Identities(tree.promo->GetChildren()), expected);
}

TEST_F(VantroNodeTest, UserAccountAndWorkspaceListTheirOneChildList) {
    StudioTree tree;
    auto other = MakeNode<VantroAccount>(tree.user, u"Agency");
    tree.user->SetAccounts(List({tree.studio, other}));

    EXPECT_EQ(Identities(tree.user->GetChildren()),
              (std::vector<const VantroNode*>{other.get(), tree.studio.get()}));
    EXPECT_EQ(Identities(tree.studio->GetChildren()),
              std::vector<const VantroNode*>{tree.team.get()});
    EXPECT_EQ(Identities(tree.team->GetChildren()),
              std::vector<const VantroNode*>{tree.promo.get()});
}

TEST_F(VantroNodeTest, LeavesHaveNoChildren) {
    StudioTree tree;
    EXPECT_TRUE(MakeNode<VantroFile>(tree.cuts, u"a.mov")->GetChildren().empty());
    EXPECT_TRUE(MakeNode<VantroVersionStack>(tree.cuts, u"b.mov")->GetChildren().empty());
}

TEST_F(VantroNodeTest, AVantroFileIsFetchedFromBirthAndItsObserversReceiveIt) {
    auto file = std::make_shared<VantroFile>(std::weak_ptr<VantroNode>());
    EXPECT_EQ(file->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_EQ(Pump(), 0u) << "being born Fetched queues nothing";

    std::vector<FetchChildrenState> seen;
    auto binding = file->AddFetchChildrenStateBinding(
        [&](const FetchChildrenState& state) { seen.push_back(state); });
    EXPECT_TRUE(seen.empty()) << "delivered later, on the main thread";
    Pump();
    EXPECT_EQ(seen, std::vector<FetchChildrenState>{FetchChildrenState::Fetched});

    file->FetchChildren();
    Pump();
    EXPECT_EQ(file->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_EQ(seen.size(), 1u) << "fetching a leaf leaves it Fetched and delivers nothing";
}

TEST_F(VantroNodeTest, AVersionStackIsFetchedFromBirthAndStaysFetched) {
    auto stack = std::make_shared<VantroVersionStack>(std::weak_ptr<VantroNode>());
    EXPECT_EQ(stack->GetFetchChildrenState(), FetchChildrenState::Fetched);
    stack->FetchChildren();
    EXPECT_EQ(stack->GetFetchChildrenState(), FetchChildrenState::Fetched);
}

TEST_F(VantroNodeTest, InnerKindsStartNotFetchedAndFetchingSetsFetching) {
    std::vector<std::shared_ptr<VantroNode>> nodes{
        std::make_shared<VantroUser>(),
        std::make_shared<VantroAccount>(std::weak_ptr<VantroNode>()),
        std::make_shared<VantroWorkspace>(std::weak_ptr<VantroNode>()),
        std::make_shared<VantroProject>(std::weak_ptr<VantroNode>()),
        std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>())};
    for (const auto& node : nodes) {
        SCOPED_TRACE(kelcore::string::UTF16toStdString(node->GetTypeTag()));
        EXPECT_EQ(node->GetFetchChildrenState(), FetchChildrenState::NotFetched);
        node->FetchChildren();
        EXPECT_EQ(node->GetFetchChildrenState(), FetchChildrenState::Fetching);
        EXPECT_TRUE(node->GetChildren().empty()) << "the base fetches nothing itself";
    }
}

TEST_F(VantroNodeTest, FetchingDeliversFetchingToObservers) {
    auto folder = std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>());
    std::vector<FetchChildrenState> seen;
    auto binding = folder->AddFetchChildrenStateBinding(
        [&](const FetchChildrenState& state) { seen.push_back(state); });
    folder->FetchChildren();
    Pump();
    EXPECT_EQ(seen, (std::vector<FetchChildrenState>{FetchChildrenState::NotFetched,
                                                     FetchChildrenState::Fetching}));
}

TEST_F(VantroNodeTest, AChildHoldsItsParentWeakly) {
    auto user = std::make_shared<VantroUser>();
    auto account = MakeNode<VantroAccount>(user, u"Studio");
    EXPECT_EQ(account->GetParent(), user);
    EXPECT_EQ(user->GetParent(), nullptr);
    user->SetAccounts(List({account}));
    user.reset();
    EXPECT_EQ(account->GetParent(), nullptr) << "the account did not keep its user alive";
}

TEST_F(VantroNodeTest, FindNodeWithTheUsersOwnIdReturnsTheUser) {
    StudioTree tree;
    EXPECT_EQ(tree.user->FindNode(tree.user->GetID()), tree.user);
}

TEST_F(VantroNodeTest, FindNodeSearchesDepthFirstThroughEveryKind) {
    StudioTree tree;
    auto file = MakeNode<VantroFile>(tree.cuts, u"a.mov");
    auto stack = MakeNode<VantroVersionStack>(tree.cuts, u"b.mov");
    tree.cuts->SetFiles(List({file}));
    tree.cuts->SetVersionStacks(List({stack}));
    for (const std::shared_ptr<VantroNode>& node : std::vector<std::shared_ptr<VantroNode>>{
             tree.studio, tree.team, tree.promo, tree.root, tree.cuts, file, stack}) {
        EXPECT_EQ(tree.user->FindNode(node->GetID()), node);
    }
    EXPECT_EQ(tree.team->FindNode(tree.cuts->GetID()), tree.cuts) << "from any node down";
    EXPECT_EQ(tree.cuts->FindNode(tree.team->GetID()), nullptr) << "never upwards";
    EXPECT_EQ(tree.user->FindNode(Guid::CreateUnique()), nullptr);
}

TEST_F(VantroNodeTest, FindNodeAnswersTheFirstMatchInChildOrder) {
    // Ids are meant to be unique; should two nodes carry one, the earlier in child order wins.
    StudioTree tree;
    auto file = MakeNode<VantroFile>(tree.cuts, u"z.mov");
    auto folder = MakeNode<VantroFolder>(tree.cuts, u"a");
    folder->SetID(file->GetID());
    tree.cuts->SetFolders(List({folder}));
    tree.cuts->SetFiles(List({file}));
    EXPECT_EQ(tree.user->FindNode(file->GetID()), file) << "files come before folders";
}

TEST_F(VantroNodeTest, FindNodeInAFolderThatWasNeverExpandedReturnsNull) {
    StudioTree tree;
    // Cuts exists at the service with a folder inside, but nobody has expanded Cuts.
    auto inside = MakeNode<VantroFolder>(tree.cuts, u"Selects");
    EXPECT_EQ(tree.user->FindNode(inside->GetID()), nullptr);
    EXPECT_EQ(tree.cuts->GetFetchChildrenState(), FetchChildrenState::NotFetched)
        << "the search fetched nothing";

    tree.cuts->SetFolders(List({inside}));  // what the expansion would bring
    EXPECT_EQ(tree.user->FindNode(inside->GetID()), inside);
}

TEST_F(VantroNodeTest, FindNodeOnANodeThatNoSharedPtrOwnsThrowsBadWeakPtr) {
    VantroFile file{std::weak_ptr<VantroNode>()};
    const Guid id = Guid::CreateUnique();
    file.SetID(id);
    EXPECT_THROW(static_cast<void>(file.FindNode(id)), std::bad_weak_ptr);
    EXPECT_EQ(file.FindNode(Guid::CreateUnique()), nullptr) << "no match needs no reference";
}

}  // namespace
}  // namespace vantrokelui::testing
