// Walking up the tree to the project, workspace or account of a node.
#include <memory>

#include <gtest/gtest.h>

#include <support/MainThreadFixture.h>
#include <vantrokelui/nodes/NodeFunctions.h>

#include "TestTree.h"

namespace vantrokelui::testing {
namespace {

class NodeFunctionsTest : public testsupport::MainThreadFixture {};

TEST_F(NodeFunctionsTest, AFolderFindsItsProjectWorkspaceAndAccount) {
    StudioTree tree;
    auto file = MakeNode<VantroFile>(tree.cuts, u"a.mov");
    for (const std::shared_ptr<VantroNode>& node :
         {std::shared_ptr<VantroNode>(tree.root), std::shared_ptr<VantroNode>(tree.cuts),
          std::shared_ptr<VantroNode>(file)}) {
        EXPECT_EQ(GetProject(node), tree.promo);
        EXPECT_EQ(GetWorkspace(node), tree.team);
        EXPECT_EQ(GetAccount(node), tree.studio);
    }
}

TEST_F(NodeFunctionsTest, EachWalkStartsWithTheNodeItself) {
    StudioTree tree;
    EXPECT_EQ(GetProject(tree.promo), tree.promo);
    EXPECT_EQ(GetWorkspace(tree.team), tree.team);
    EXPECT_EQ(GetAccount(tree.studio), tree.studio);
}

TEST_F(NodeFunctionsTest, AWalkPastTheTopAnswersNull) {
    StudioTree tree;
    EXPECT_EQ(GetProject(tree.team), nullptr) << "a project is below its workspace";
    EXPECT_EQ(GetWorkspace(tree.studio), nullptr);
    EXPECT_EQ(GetAccount(tree.user), nullptr);
    EXPECT_EQ(GetProject(nullptr), nullptr);
    EXPECT_EQ(GetWorkspace(nullptr), nullptr);
    EXPECT_EQ(GetAccount(nullptr), nullptr);
}

TEST_F(NodeFunctionsTest, TheNearestProjectWins) {
    // A project below a project does not occur in the service, but the walk stops at the first.
    StudioTree tree;
    auto inner = MakeNode<VantroProject>(tree.cuts, u"Inner");
    auto folder = MakeNode<VantroFolder>(inner, u"Deep");
    EXPECT_EQ(GetProject(folder), inner);
    EXPECT_EQ(GetProject(tree.cuts), tree.promo);
}

TEST_F(NodeFunctionsTest, TheWalkEndsWhereAParentHasDied) {
    std::shared_ptr<VantroFolder> cuts = StudioTree().cuts;
    Pump();  // the queued deliveries of the tree's lists held it too; now the rest is gone
    EXPECT_EQ(cuts->GetParent(), nullptr);
    EXPECT_EQ(GetProject(cuts), nullptr);
    EXPECT_EQ(GetAccount(cuts), nullptr);

    std::shared_ptr<VantroProject> promo = StudioTree().promo;
    Pump();
    EXPECT_EQ(GetWorkspace(promo), nullptr);
    EXPECT_EQ(GetProject(promo), promo);
}

}  // namespace
}  // namespace vantrokelui::testing
