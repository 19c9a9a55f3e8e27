// A project's root folder: stored and delivered like any value, and never null.
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/config/ResultCode.h>
#include <kelcore/config/kel_exception.h>
#include <support/MainThreadFixture.h>

#include "TestTree.h"

namespace vantrokelui::testing {
namespace {

class VantroProjectTest : public testsupport::MainThreadFixture {};

TEST_F(VantroProjectTest, SettingANullRootFolderIsAContractViolation) {
    auto project = std::make_shared<VantroProject>(std::weak_ptr<VantroNode>());
    auto root = MakeNode<VantroFolder>(project, u"Promo");
    project->SetRootFolder(root);

    try {
        project->SetRootFolder(nullptr);
        FAIL() << "a null root folder was accepted";
    } catch (const kelcore::config::kel_exception& error) {
        EXPECT_EQ(error.GetText(),
                  "Contract violation: RootFolder property may not be set to null.");
        EXPECT_EQ(error.GetCode(), kelcore::config::kResultContractViolation);
    }
    EXPECT_EQ(project->GetRootFolder(), root) << "nothing was stored";
}

TEST_F(VantroProjectTest, ANullRootFolderIsRefusedAlsoOnAFreshProject) {
    auto project = std::make_shared<VantroProject>(std::weak_ptr<VantroNode>());
    std::vector<bool> seen;
    auto binding = project->AddRootFolderBinding(
        [&](const std::shared_ptr<VantroFolder>& folder) { seen.push_back(folder != nullptr); });
    // Even where null is the value already held, the refusal comes first.
    EXPECT_THROW(project->SetRootFolder(nullptr), kelcore::config::kel_exception);
    Pump();
    EXPECT_EQ(seen, std::vector<bool>{false}) << "only the first delivery of the default";
}

TEST_F(VantroProjectTest, TheRootFolderIsStoredAndDelivered) {
    auto project = std::make_shared<VantroProject>(std::weak_ptr<VantroNode>());
    std::vector<std::shared_ptr<VantroFolder>> seen;
    auto binding = project->AddRootFolderBinding(
        [&](const std::shared_ptr<VantroFolder>& folder) { seen.push_back(folder); });
    auto root = MakeNode<VantroFolder>(project, u"Promo");
    project->SetRootFolder(root);
    project->SetRootFolder(root);
    Pump();
    EXPECT_EQ(seen, (std::vector<std::shared_ptr<VantroFolder>>{nullptr, root}));
}

}  // namespace
}  // namespace vantrokelui::testing
