// The view model's copy: every value and field, and none of the observers.

#include <memory>

#include <gtest/gtest.h>

#include <vantrokelui/model/SequenceSettings.h>

#include "ViewModelFixture.h"

namespace vantrokelui::viewmodel::testing {
namespace {

/// The copy constructor is for derived classes; this one makes it reachable.
class CopyableViewModel : public ShareForReviewViewModel {
public:
    CopyableViewModel() = default;
    CopyableViewModel(const CopyableViewModel&) = default;
};

class ViewModelCopyTest : public ViewModelFixture {};

TEST_F(ViewModelCopyTest, ACopyHasEveryValueAndFieldButNoObserver) {
    auto original = std::make_shared<CopyableViewModel>();
    Inject(original);
    const LocalTree tree = LocalTree::Make();
    original->SetUser(tree.user);
    original->SetActiveAssetName(u"Cut 9");
    original->SetReviewLinkURL(u"https://review.example/l/9");
    original->SetIsLoggedIn(true);
    original->SetEncodingProgress(0.75);
    original->SetCreateNewLinkMode(true);
    original->SetCurrentViewID(ViewID::CopyLinkSection);
    int originalDeliveries = 0;
    auto binding = original->AddCurrentViewIDBinding([&](ViewID) { ++originalDeliveries; });
    Pump();
    originalDeliveries = 0;

    CopyableViewModel copy(*original);
    EXPECT_EQ(copy.GetUser(), tree.user);
    EXPECT_EQ(copy.GetActiveAssetName(), u"Cut 9");
    EXPECT_EQ(copy.GetReviewLinkURL(), u"https://review.example/l/9");
    EXPECT_TRUE(copy.GetIsLoggedIn());
    EXPECT_TRUE(copy.GetIsNetworkConnected());
    EXPECT_EQ(copy.GetEncodingProgress(), 0.75);
    EXPECT_TRUE(copy.GetCreateNewLinkMode());
    EXPECT_EQ(copy.GetCurrentViewID(), ViewID::CopyLinkSection);

    // The injected functions came along: the copy reads the same host.
    Store(model::kReviewLinkURLKey, u"https://review.example/l/stored");
    copy.ReadSettingsFromCurrentSequence();
    EXPECT_EQ(copy.GetReviewLinkURL(), u"https://review.example/l/stored");
    EXPECT_EQ(original->GetReviewLinkURL(), u"https://review.example/l/9");

    copy.SetCurrentViewID(ViewID::ReviewInVantro);
    Pump();
    EXPECT_EQ(copy.GetCurrentViewID(), ViewID::ReviewInVantro);
    EXPECT_EQ(original->GetCurrentViewID(), ViewID::CopyLinkSection);
    EXPECT_EQ(originalDeliveries, 0) << "the copy must not share the original's observers";
}

TEST_F(ViewModelCopyTest, ACopyTakesTheGatesState) {
    auto original = std::make_shared<CopyableViewModel>();
    Inject(original);
    original->SetCurrentViewID(ViewID::None);  // shuts the gate
    CopyableViewModel copy(*original);
    copy.SetCurrentViewID(ViewID::ReviewInVantro);
    EXPECT_EQ(copy.GetCurrentViewID(), ViewID::None);
}

}  // namespace
}  // namespace vantrokelui::viewmodel::testing
