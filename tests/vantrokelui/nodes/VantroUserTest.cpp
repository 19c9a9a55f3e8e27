// The user's hold on the location: the proposed account and folder of the picker, and the
// committed selection with the path and settings page derived from it.
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

constexpr const char* kWebBase = "https://review.example.test";

class VantroUserTest : public testsupport::MainThreadFixture {
protected:
    // Records every delivery of the user's location properties, in delivery order, as
    // "<property>:<name of the node or text>" ("-" for null).
    void Watch(VantroUser& user) {
        auto describe = [](const auto& node) -> std::string {
            return node ? kelcore::string::UTF16toStdString(node->GetName()) : "-";
        };
        bindings.push_back(user.AddProposedAccountBinding([this, describe](const auto& a) {
            events.push_back("ProposedAccount:" + describe(a));
        }));
        bindings.push_back(user.AddProposedSelectionBinding([this, describe](const auto& f) {
            events.push_back("ProposedSelection:" + describe(f));
        }));
        bindings.push_back(user.AddSelectionBinding(
            [this, describe](const auto& f) { events.push_back("Selection:" + describe(f)); }));
        bindings.push_back(user.AddSelectionPathBinding([this](const string& path) {
            events.push_back("SelectionPath:" + kelcore::string::UTF16toStdString(path));
        }));
        bindings.push_back(user.AddSettingsURLBinding([this](const string& url) {
            events.push_back("SettingsURL:" + kelcore::string::UTF16toStdString(url));
        }));
        Pump();
        events.clear();
    }

    std::string SettingsURLOf(const VantroProject& project) const {
        return std::string(kWebBase) + "/projects/" + project.GetID().AsStdString() +
               "/review-links";
    }

    ScopedEnvironmentVariable webURL{"VANTRO_SERVICE_WEB_URL", kWebBase};
    std::vector<std::string> events;
    std::vector<std::shared_ptr<utility::DataBinding>> bindings;
};

TEST_F(VantroUserTest, AFreshUserHasNoIdNoAccountsAndNoSelection) {
    auto user = std::make_shared<VantroUser>();
    EXPECT_TRUE(user->GetID().IsNil());
    EXPECT_TRUE(user->GetAccounts().empty());
    EXPECT_EQ(user->GetSelection(), nullptr);
    EXPECT_EQ(user->GetProposedSelection(), nullptr);
    EXPECT_EQ(user->GetProposedAccount(), nullptr);
    EXPECT_TRUE(user->GetSelectionPath().empty());
    EXPECT_TRUE(user->GetSettingsURL().empty());
}

TEST_F(VantroUserTest, SelectingAFolderSetsItsPathAndSettingsURL) {
    StudioTree tree;
    Watch(*tree.user);
    tree.user->SetSelection(tree.cuts);
    EXPECT_EQ(tree.user->GetSelection(), tree.cuts);
    EXPECT_EQ(tree.user->GetSelectionPath(), u"Studio/Team/Promo/Cuts");
    EXPECT_EQ(kelcore::string::UTF16toStdString(tree.user->GetSettingsURL()),
              SettingsURLOf(*tree.promo));
    Pump();
    EXPECT_EQ(events,
              (std::vector<std::string>{"Selection:Cuts", "SelectionPath:Studio/Team/Promo/Cuts",
                                        "SettingsURL:" + SettingsURLOf(*tree.promo)}));
}

TEST_F(VantroUserTest, SelectionSetToNullGivesASlashAndAnEmptySettingsURL) {
    StudioTree tree;
    tree.user->SetSelection(tree.cuts);
    Watch(*tree.user);

    tree.user->SetSelection(nullptr);
    EXPECT_EQ(tree.user->GetSelectionPath(), u"/");
    EXPECT_TRUE(tree.user->GetSettingsURL().empty());
    Pump();
    EXPECT_EQ(events, (std::vector<std::string>{"Selection:-", "SelectionPath:/", "SettingsURL:"}));
}

TEST_F(VantroUserTest, SelectionNullOnAFreshUserStillSetsThePath) {
    auto user = std::make_shared<VantroUser>();
    Watch(*user);
    user->SetSelection(nullptr);  // the same null: Selection itself delivers nothing
    EXPECT_EQ(user->GetSelectionPath(), u"/");
    Pump();
    EXPECT_EQ(events, std::vector<std::string>{"SelectionPath:/"});
}

TEST_F(VantroUserTest, ReselectingTheSameFolderRecomputesItsPathAndURL) {
    StudioTree tree;
    tree.user->SetSelection(tree.cuts);
    Watch(*tree.user);

    tree.cuts->SetName(u"Final Cuts");  // a rename reaches the path only through a new set
    tree.promo->SetID(kelcore::utility::Guid::CreateUnique());
    EXPECT_EQ(tree.user->GetSelectionPath(), u"Studio/Team/Promo/Cuts");
    tree.user->SetSelection(tree.cuts);
    EXPECT_EQ(tree.user->GetSelectionPath(), u"Studio/Team/Promo/Final Cuts");
    Pump();
    EXPECT_EQ(events, (std::vector<std::string>{"SelectionPath:Studio/Team/Promo/Final Cuts",
                                                "SettingsURL:" + SettingsURLOf(*tree.promo)}));
}

TEST_F(VantroUserTest, TheSettingsURLFollowsTheConfiguredWebBase) {
    StudioTree tree;
    ScopedEnvironmentVariable other{"VANTRO_SERVICE_WEB_URL", "http://web.example.test:8443/"};
    tree.user->SetSelection(tree.root);
    EXPECT_EQ(kelcore::string::UTF16toStdString(tree.user->GetSettingsURL()),
              "http://web.example.test:8443/projects/" + tree.promo->GetID().AsStdString() +
                  "/review-links");
}

TEST_F(VantroUserTest, AFolderWithNoProjectAboveItHasNoSettingsURL) {
    auto user = std::make_shared<VantroUser>();
    auto loose = MakeNode<VantroFolder>(user, u"Loose");
    user->SetSelection(loose);
    EXPECT_TRUE(user->GetSettingsURL().empty());
    EXPECT_EQ(user->GetSelectionPath(), u"/") << "no account above it either";
}

TEST_F(VantroUserTest, ChangingTheProposedAccountClearsTheProposedFolderFirst) {
    StudioTree tree;
    auto agency = MakeNode<VantroAccount>(tree.user, u"Agency");
    tree.user->SetProposedAccount(tree.studio);
    tree.user->SetProposedSelection(tree.cuts);
    Watch(*tree.user);

    tree.user->SetProposedAccount(agency);
    EXPECT_EQ(tree.user->GetProposedSelection(), nullptr);
    EXPECT_EQ(tree.user->GetProposedAccount(), agency);
    Pump();
    EXPECT_EQ(events, (std::vector<std::string>{"ProposedSelection:-", "ProposedAccount:Agency"}));
}

TEST_F(VantroUserTest, ProposingTheSameAccountLeavesTheProposedFolder) {
    StudioTree tree;
    tree.user->SetProposedAccount(tree.studio);
    tree.user->SetProposedSelection(tree.cuts);
    Watch(*tree.user);

    tree.user->SetProposedAccount(tree.studio);
    EXPECT_EQ(tree.user->GetProposedSelection(), tree.cuts);
    EXPECT_EQ(Pump(), 0u);
    EXPECT_TRUE(events.empty());
}

TEST_F(VantroUserTest, ProposingNoAccountClearsTheProposedFolder) {
    StudioTree tree;
    tree.user->SetProposedAccount(tree.studio);
    tree.user->SetProposedSelection(tree.cuts);
    Watch(*tree.user);

    tree.user->SetProposedAccount(nullptr);
    Pump();
    EXPECT_EQ(events, (std::vector<std::string>{"ProposedSelection:-", "ProposedAccount:-"}));
}

TEST_F(VantroUserTest, TheProposalDoesNotTouchTheCommittedSelection) {
    StudioTree tree;
    tree.user->SetSelection(tree.cuts);
    tree.user->SetProposedAccount(MakeNode<VantroAccount>(tree.user, u"Agency"));
    tree.user->SetProposedSelection(tree.root);
    EXPECT_EQ(tree.user->GetSelection(), tree.cuts);
    EXPECT_EQ(tree.user->GetSelectionPath(), u"Studio/Team/Promo/Cuts");
}

TEST_F(VantroUserTest, ASelectedFolderOutlivesARefetchOfItsList) {
    StudioTree tree;
    tree.user->SetSelection(tree.cuts);
    const std::weak_ptr<VantroFolder> weakCuts = tree.cuts;
    const kelcore::utility::Guid id = tree.cuts->GetID();
    tree.cuts.reset();

    auto refetched = MakeNode<VantroFolder>(tree.root, u"Cuts");
    refetched->SetID(id);
    tree.root->SetFolders(List({refetched}));
    EXPECT_FALSE(weakCuts.expired()) << "the selection holds it";
    EXPECT_NE(tree.user->GetSelection(), refetched);
    EXPECT_EQ(tree.user->FindNode(id), refetched) << "identity in the tree is by id";
    EXPECT_EQ(MakeSelectionPath(tree.user->GetSelection()), u"Studio/Team/Promo/Cuts")
        << "its parents still live";
}

}  // namespace
}  // namespace vantrokelui::testing
