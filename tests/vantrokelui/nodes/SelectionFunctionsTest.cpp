// The selection's path as shown to the user, the settings page of its project, and forgetting
// the selection.
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/string/String.h>
#include <support/MainThreadFixture.h>
#include <support/ScopedEnvironmentVariable.h>
#include <vantrokelui/nodes/SelectionFunctions.h>
#include <vantrokelui/utility/DataBinding.h>

#include "TestTree.h"

namespace vantrokelui::testing {
namespace {

using testsupport::ScopedEnvironmentVariable;

class SelectionFunctionsTest : public testsupport::MainThreadFixture {};

TEST_F(SelectionFunctionsTest, AFolderUnderTheRootFolderGivesAccountWorkspaceProjectAndFolder) {
    StudioTree tree;
    EXPECT_EQ(MakeSelectionPath(tree.cuts), u"Studio/Team/Promo/Cuts");
}

TEST_F(SelectionFunctionsTest, TheRootFolderItselfGivesTheProjectsPath) {
    StudioTree tree;
    tree.root->SetName(u"root asset name");  // left out, whatever it is called
    EXPECT_EQ(MakeSelectionPath(tree.root), u"Studio/Team/Promo");
}

TEST_F(SelectionFunctionsTest, DeeperFoldersAddOneSegmentEach) {
    StudioTree tree;
    auto selects = MakeNode<VantroFolder>(tree.cuts, u"Selects");
    auto day2 = MakeNode<VantroFolder>(selects, u"Day 2");
    EXPECT_EQ(MakeSelectionPath(day2), u"Studio/Team/Promo/Cuts/Selects/Day 2");
}

TEST_F(SelectionFunctionsTest, ANullNodeGivesASlash) {
    EXPECT_EQ(MakeSelectionPath(nullptr), u"/");
}

TEST_F(SelectionFunctionsTest, ANodeWithNoAccountAboveItGivesASlash) {
    auto user = std::make_shared<VantroUser>();
    auto workspace = MakeNode<VantroWorkspace>(user, u"Team");
    auto project = MakeNode<VantroProject>(workspace, u"Promo");
    auto root = MakeNode<VantroFolder>(project, u"Promo");
    project->SetRootFolder(root);
    auto cuts = MakeNode<VantroFolder>(root, u"Cuts");
    EXPECT_EQ(MakeSelectionPath(cuts), u"/");
    EXPECT_EQ(MakeSelectionPath(std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>())), u"/");
}

TEST_F(SelectionFunctionsTest, TheAccountEndsThePathAndNothingAboveItCounts) {
    StudioTree tree;
    tree.user->SetName(u"Dana Example");
    EXPECT_EQ(MakeSelectionPath(tree.promo), u"Studio/Team/Promo");
    EXPECT_EQ(MakeSelectionPath(tree.team), u"Studio/Team");
    EXPECT_EQ(MakeSelectionPath(tree.studio), u"/") << "no account above the account";
}

TEST_F(SelectionFunctionsTest, AProjectWithoutItsRootFolderYetKeepsEveryFolderInThePath) {
    auto user = std::make_shared<VantroUser>();
    auto account = MakeNode<VantroAccount>(user, u"Studio");
    auto workspace = MakeNode<VantroWorkspace>(account, u"Team");
    auto project = MakeNode<VantroProject>(workspace, u"Promo");
    auto root = MakeNode<VantroFolder>(project, u"Top");  // not yet the project's RootFolder
    auto cuts = MakeNode<VantroFolder>(root, u"Cuts");
    EXPECT_EQ(MakeSelectionPath(cuts), u"Studio/Team/Promo/Top/Cuts");
}

TEST_F(SelectionFunctionsTest, TheSettingsURLIsTheWebBaseProjectsTheProjectIdAndReviewLinks) {
    ScopedEnvironmentVariable webURL{"VANTRO_SERVICE_WEB_URL", "https://review.example.test"};
    StudioTree tree;
    const std::string expected = "https://review.example.test/projects/" +
                                 tree.promo->GetID().AsStdString() + "/review-links";
    EXPECT_EQ(kelcore::string::UTF16toStdString(MakeSettingsURL(tree.cuts)), expected);
    EXPECT_EQ(kelcore::string::UTF16toStdString(MakeSettingsURL(tree.root)), expected);
    EXPECT_EQ(kelcore::string::UTF16toStdString(MakeSettingsURL(tree.promo)), expected);
}

TEST_F(SelectionFunctionsTest, WithoutAWebURLTheSettingsPageIsOnTheServiceItself) {
    ScopedEnvironmentVariable webURL{"VANTRO_SERVICE_WEB_URL", std::nullopt};
    ScopedEnvironmentVariable apiURL{"VANTRO_SERVICE_URL", "http://127.0.0.1:9181/"};
    StudioTree tree;
    EXPECT_EQ(
        kelcore::string::UTF16toStdString(MakeSettingsURL(tree.cuts)),
        "http://127.0.0.1:9181/projects/" + tree.promo->GetID().AsStdString() + "/review-links");
}

TEST_F(SelectionFunctionsTest, NoProjectMeansNoSettingsURL) {
    ScopedEnvironmentVariable webURL{"VANTRO_SERVICE_WEB_URL", "https://review.example.test"};
    StudioTree tree;
    EXPECT_TRUE(MakeSettingsURL(nullptr).empty());
    EXPECT_TRUE(MakeSettingsURL(tree.team).empty());
    EXPECT_TRUE(
        MakeSettingsURL(std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>())).empty());
}

// A user that records the order in which its three location setters are called.
class RecordingUser : public VantroUser {
public:
    void SetProposedAccount(const std::shared_ptr<VantroAccount>& account) override {
        calls.push_back("ProposedAccount");
        VantroUser::SetProposedAccount(account);
    }
    void SetProposedSelection(const std::shared_ptr<VantroFolder>& folder) override {
        calls.push_back("ProposedSelection");
        VantroUser::SetProposedSelection(folder);
    }
    void SetSelection(const std::shared_ptr<VantroFolder>& folder) override {
        calls.push_back("Selection");
        VantroUser::SetSelection(folder);
    }

    std::vector<std::string> calls;
};

TEST_F(SelectionFunctionsTest, ResetSelectionSetsProposedAccountProposedSelectionThenSelection) {
    // No proposed account: clearing it changes nothing, so it clears no folder of its own accord.
    auto user = std::make_shared<RecordingUser>();
    auto folder = MakeNode<VantroFolder>(user, u"Cuts");
    user->SetProposedSelection(folder);
    user->SetSelection(folder);
    user->calls.clear();

    ResetSelection(user);
    EXPECT_EQ(user->calls,
              (std::vector<std::string>{"ProposedAccount", "ProposedSelection", "Selection"}));
    EXPECT_EQ(user->GetProposedSelection(), nullptr);
    EXPECT_EQ(user->GetSelection(), nullptr);
    EXPECT_EQ(user->GetSelectionPath(), u"/");
}

TEST_F(SelectionFunctionsTest, ResetSelectionClearsEverythingAndDeliversInOrder) {
    StudioTree tree;
    tree.user->SetProposedAccount(tree.studio);
    tree.user->SetProposedSelection(tree.cuts);
    tree.user->SetSelection(tree.cuts);
    std::vector<std::string> events;
    std::vector<std::shared_ptr<utility::DataBinding>> bindings;
    bindings.push_back(tree.user->AddProposedAccountBinding(
        [&](const auto& a) { events.push_back(a ? "ProposedAccount" : "ProposedAccount:-"); }));
    bindings.push_back(tree.user->AddProposedSelectionBinding(
        [&](const auto& f) { events.push_back(f ? "ProposedSelection" : "ProposedSelection:-"); }));
    bindings.push_back(tree.user->AddSelectionBinding(
        [&](const auto& f) { events.push_back(f ? "Selection" : "Selection:-"); }));
    Pump();
    events.clear();

    ResetSelection(tree.user);
    Pump();
    // Changing the proposed account clears the proposed folder first, so the later clear of the
    // folder finds it null already.
    EXPECT_EQ(events, (std::vector<std::string>{"ProposedSelection:-", "ProposedAccount:-",
                                                "Selection:-"}));
    EXPECT_EQ(tree.user->GetProposedAccount(), nullptr);
    EXPECT_EQ(tree.user->GetSelectionPath(), u"/");
    EXPECT_TRUE(tree.user->GetSettingsURL().empty());
}

TEST_F(SelectionFunctionsTest, ResetSelectionOfNoUserDoesNothing) {
    ResetSelection(nullptr);
    EXPECT_EQ(Pump(), 0u);
}

}  // namespace
}  // namespace vantrokelui::testing
