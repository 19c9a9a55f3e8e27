// The four screens that only say why the panel cannot share now: no encoding application, no
// sequence, offline, and storage full. What each shows in its header row and below it, where
// it puts them, and what its header menu offers.
#include <memory>
#include <string>
#include <vector>

#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

#include <vantrokelui/sharedui/ResourceManager.h>
#include <vantrokelui/view/NoAssetProcessorView.h>
#include <vantrokelui/view/NoAssetView.h>
#include <vantrokelui/view/OfflineView.h>
#include <vantrokelui/view/StorageLimitExceededView.h>

#include "StatusViewFixture.h"

namespace vantrokelui::view::testing {
namespace {

const char* const kNoAssetProcessorName =
    "$$$/Corvane/vantrokelui/view/VantroShare/NoAssetProcessorView/WorkflowLabel=Sarvex not "
    "installed";
const char* const kNoAssetProcessorText =
    "$$$/Corvane/vantrokelui/view/VantroShare/NoAssetProcessorView/DescriptionText=Please "
    "install the latest version of Tessaly Sarvex to create a link.";
const char* const kNoAssetName =
    "$$$/Corvane/vantrokelui/view/VantroShare/NoAssetView/WorkflowLabel=No source detected";
const char* const kNoAssetText =
    "$$$/Corvane/vantrokelui/view/VantroShare/NoAssetView/DescriptionText=Select a sequence to "
    "share.";
const char* const kStorageText =
    "$$$/Corvane/vantrokelui/view/VantroShare/StorageLimitExceededView/DescriptionText=You've "
    "reached your storage limit. Upgrade your Vantro account for more storage.";
const char* const kOfflineText =
    "$$$/Corvane/vantrokelui/view/VantroShare/OfflineView/DescriptionText=Connect to the "
    "internet to share for review.";

class MessageViewsTest : public StatusViewFixture {
protected:
    /// An icon for the active sequence, as the host's sequence kind would give it.
    void GiveTheSequenceAnIcon() {
        viewModel->SetAssetTypeIcon(
            sharedui::BindImageSupplyFunction("S_Sequence_16", &sharedui::GetResourceManager));
    }

    /// Picks the only entry of `label`'s menu with the keyboard, as a user would.
    void ChooseTheOnlyMenuEntry(const boost::intrusive_ptr<WorkflowLabel>& label) {
        auto& popup = *label->GetMenuPopup();
        popup.ShowMenu();
        ASSERT_TRUE(popup.IsMenuShowing());
        QTest::keyClick(popup.GetMenu(), Qt::Key_Down);
        QTest::keyClick(popup.GetMenu(), Qt::Key_Return);
        Pump();
    }
};

// ---- NoAssetProcessorView ---------------------------------------------------------------------

TEST_F(MessageViewsTest, NoAssetProcessorShowsAFixedItalicNameAndTheInstallRequest) {
    GiveTheSequenceAnIcon();  // not the screen's concern: it names no sequence
    auto screen = MakeView<NoAssetProcessorView>();
    const auto& label = screen->GetWorkflowLabel();
    EXPECT_EQ(label->GetNameText()->GetText(), Localized(kNoAssetProcessorName));
    EXPECT_EQ(label->GetNameText()->GetText(), u"Sarvex not installed");
    EXPECT_EQ(label->GetNameText()->GetFontStyleName(), "Italic");
    EXPECT_FALSE(label->GetIconImage()->UI_IsShown());
    const auto& text = screen->GetDescriptionText();
    EXPECT_EQ(text->GetText(), Localized(kNoAssetProcessorText));
    EXPECT_TRUE(text->IsMultiLine());
    EXPECT_TRUE(text->UI_IsShown());
    EXPECT_TRUE(label->UI_IsShown());
    EXPECT_TRUE(screen->UI_IsShown());
    EXPECT_EQ(AccessibleName(text), text->GetText());
    // The sequence's name does not replace the fixed one.
    viewModel->SetActiveAssetName(u"Cut 2");
    Pump();
    EXPECT_EQ(label->GetNameText()->GetText(), u"Sarvex not installed");
}

TEST_F(MessageViewsTest, NoAssetProcessorPutsTheLabelAtTheTopAndTwoLinesFortyFiveAboveTheBottom) {
    auto screen = MakeView<NoAssetProcessorView>();
    EXPECT_EQ(sharedui::GetRecommendedSize(screen), (PointT<float>{340.0f, 85.0f}));
    EXPECT_EQ(screen->GetWorkflowLabel()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 10.0f, 310.0f, 20.0f}));
    EXPECT_EQ(screen->GetDescriptionText()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 40.0f, 310.0f, 30.0f}));
    // The text keeps to the bottom when the section makes the screen taller.
    screen->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 120.0f});
    EXPECT_EQ(screen->GetDescriptionText()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 75.0f, 310.0f, 30.0f}));
    EXPECT_EQ(screen->GetWorkflowLabel()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 10.0f, 310.0f, 20.0f}));
}

TEST_F(MessageViewsTest, NoAssetProcessorsSignOutIsEnabledOnlyOnlineAndSignedIn) {
    viewModel->SetIsLoggedIn(false);
    auto signedOut = MakeView<NoAssetProcessorView>();
    const auto& outMenu = signedOut->GetWorkflowLabel()->GetMenuPopup();
    ASSERT_EQ(outMenu->GetItemCount(), 1);
    EXPECT_EQ(outMenu->GetItemText(0), u"Sign out of Vantro");
    EXPECT_FALSE(outMenu->IsItemEnabled(0));

    viewModel->SetIsLoggedIn(true);
    auto signedIn = MakeView<NoAssetProcessorView>();
    EXPECT_TRUE(signedIn->GetWorkflowLabel()->GetMenuPopup()->IsItemEnabled(0));

    // Read when the screen is made: a later change of state does not reach the item.
    viewModel->SetIsLoggedIn(false);
    Pump();
    EXPECT_TRUE(signedIn->GetWorkflowLabel()->GetMenuPopup()->IsItemEnabled(0));
}

TEST_F(MessageViewsTest, NoAssetProcessorsSignOutSignsOutAndClosesThePanel) {
    UseTheDatastore();
    viewModel->SetIsLoggedIn(true);
    viewModel->SetCurrentViewID(ViewID::NoAssetProcessor);
    auto screen = MakeView<NoAssetProcessorView>();
    ChooseTheOnlyMenuEntry(screen->GetWorkflowLabel());
    EXPECT_EQ(datastore->SignOuts(), (std::vector<std::string>{"SignOutJwt", "SignOutOAuth2"}));
    EXPECT_FALSE(viewModel->GetIsLoggedIn());
    EXPECT_EQ(View(), ViewID::None);
}

// ---- NoAssetView ------------------------------------------------------------------------------

TEST_F(MessageViewsTest, NoAssetShowsAFixedItalicNameAndOneLineAskingForASequence) {
    auto screen = MakeView<NoAssetView>();
    const auto& label = screen->GetWorkflowLabel();
    EXPECT_EQ(label->GetNameText()->GetText(), Localized(kNoAssetName));
    EXPECT_EQ(label->GetNameText()->GetText(), u"No source detected");
    EXPECT_EQ(label->GetNameText()->GetFontStyleName(), "Italic");
    EXPECT_FALSE(label->GetIconImage()->UI_IsShown());
    EXPECT_EQ(screen->GetDescriptionText()->GetText(), Localized(kNoAssetText));
    EXPECT_EQ(screen->GetDescriptionText()->GetText(), u"Select a sequence to share.");
    EXPECT_FALSE(screen->GetDescriptionText()->IsMultiLine());
    EXPECT_TRUE(screen->GetDescriptionText()->UI_IsShown());
    ASSERT_EQ(label->GetMenuPopup()->GetItemCount(), 1);
    EXPECT_EQ(label->GetMenuPopup()->GetItemText(0), u"Sign out of Vantro");
}

TEST_F(MessageViewsTest, NoAssetPutsItsLineThirtyAboveTheBottom) {
    auto screen = MakeView<NoAssetView>();
    EXPECT_EQ(sharedui::GetRecommendedSize(screen), (PointT<float>{340.0f, 70.0f}));
    EXPECT_EQ(screen->GetWorkflowLabel()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 10.0f, 310.0f, 20.0f}));
    EXPECT_EQ(screen->GetDescriptionText()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 40.0f, 310.0f, 15.0f}));
    screen->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 100.0f});
    EXPECT_EQ(screen->GetDescriptionText()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 70.0f, 310.0f, 15.0f}));
}

TEST_F(MessageViewsTest, WithoutADrawingSupplierTheChildrenAreNotPlaced) {
    // A screen outside any window has no supplier: it keeps its rectangle and leaves its
    // children where they are until a window holds it.
    boost::intrusive_ptr<NoAssetView> loose(new NoAssetView(viewModel));
    ASSERT_EQ(loose->UI_GetDrawSupplier(), nullptr);
    loose->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 70.0f});
    EXPECT_EQ(loose->UI_GetLocalRectF(), (RectT<float>{0.0f, 0.0f, 340.0f, 70.0f}));
    EXPECT_EQ(loose->GetDescriptionText()->UI_GetLocalRectF(), (RectT<float>{}));
    EXPECT_EQ(loose->GetWorkflowLabel()->UI_GetLocalRectF(), (RectT<float>{}));
}

// ---- StorageLimitExceededView -----------------------------------------------------------------

TEST_F(MessageViewsTest, StorageLimitShowsTheSequencesIconAndNameAndFollowsTheName) {
    GiveTheSequenceAnIcon();
    auto screen = MakeView<StorageLimitExceededView>();
    const auto& label = screen->GetWorkflowLabel();
    EXPECT_TRUE(label->GetIconImage()->UI_IsShown());
    EXPECT_NE(label->GetIconImage()->GetImage(), nullptr);
    EXPECT_NE(label->GetNameText()->GetFontStyleName(), "Italic");
    EXPECT_EQ(label->GetNameText()->GetText(), u"Cut 1");
    viewModel->SetActiveAssetName(u"Cut 2 \u2013 grade");
    Pump();
    EXPECT_EQ(label->GetNameText()->GetText(), u"Cut 2 \u2013 grade");
    EXPECT_EQ(screen->GetDescriptionText()->GetText(), Localized(kStorageText));
    EXPECT_TRUE(screen->GetDescriptionText()->IsMultiLine());
    ASSERT_EQ(label->GetMenuPopup()->GetItemCount(), 1);
    EXPECT_EQ(label->GetMenuPopup()->GetItemText(0), u"Sign out of Vantro");
}

TEST_F(MessageViewsTest, StorageLimitWithoutAnIconShowsTheNameInItalics) {
    auto screen = MakeView<StorageLimitExceededView>();
    EXPECT_FALSE(screen->GetWorkflowLabel()->GetIconImage()->UI_IsShown());
    EXPECT_EQ(screen->GetWorkflowLabel()->GetNameText()->GetFontStyleName(), "Italic");
}

TEST_F(MessageViewsTest, StorageLimitSetsItsMeasuredTextFifteenAboveTheBottom) {
    auto screen = MakeView<StorageLimitExceededView>();
    const float height = sharedui::MeasureTextHeight(screen->GetDescriptionText(), 310.0f);
    ASSERT_GT(height, 15.0f) << "the request takes more than one line at 310";
    EXPECT_EQ(sharedui::GetRecommendedSize(screen), (PointT<float>{340.0f, 85.0f}));
    EXPECT_EQ(screen->GetWorkflowLabel()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 10.0f, 310.0f, 20.0f}));
    EXPECT_EQ(screen->GetDescriptionText()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 85.0f - height - 15.0f, 310.0f, height}));
    screen->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 140.0f});
    EXPECT_EQ(screen->GetDescriptionText()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 140.0f - height - 15.0f, 310.0f, height}));
}

// ---- OfflineView ------------------------------------------------------------------------------

TEST_F(MessageViewsTest, OfflineHasNoMenuSoItsLabelCannotSignOut) {
    viewModel->SetIsLoggedIn(true);  // even a signed-in user cannot sign out from here
    auto screen = MakeView<OfflineView>();
    const auto& menu = screen->GetWorkflowLabel()->GetMenuPopup();
    EXPECT_FALSE(menu->UI_IsShown());
    EXPECT_EQ(menu->GetItemCount(), 0);
    // Nothing to open: the list stays shut.
    menu->ShowMenu();
    EXPECT_FALSE(menu->IsMenuShowing());
}

TEST_F(MessageViewsTest, OfflineShowsTheSequenceAndTheOfflineNotice) {
    GiveTheSequenceAnIcon();
    auto screen = MakeView<OfflineView>();
    const auto& label = screen->GetWorkflowLabel();
    EXPECT_TRUE(label->GetIconImage()->UI_IsShown());
    EXPECT_EQ(label->GetNameText()->GetText(), u"Cut 1");
    viewModel->SetActiveAssetName(u"Cut 3");
    Pump();
    EXPECT_EQ(label->GetNameText()->GetText(), u"Cut 3");
    const auto& section = screen->GetOfflineSection();
    EXPECT_TRUE(section->UI_IsShown());
    EXPECT_EQ(section->GetText()->GetText(), Localized(kOfflineText));
    EXPECT_EQ(section->GetText()->GetText(), u"Connect to the internet to share for review.");
}

TEST_F(MessageViewsTest, OfflinePutsTheNoticeInItsRecommendedSizeFifteenAboveTheBottom) {
    auto screen = MakeView<OfflineView>();
    const PointT<float> notice = sharedui::GetRecommendedSize(screen->GetOfflineSection());
    EXPECT_EQ(sharedui::GetRecommendedSize(screen), (PointT<float>{340.0f, 70.0f}));
    EXPECT_EQ(screen->GetWorkflowLabel()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 10.0f, 310.0f, 20.0f}));
    EXPECT_EQ(screen->GetOfflineSection()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 70.0f - notice.y - 15.0f, notice.x, notice.y}));
    EXPECT_EQ(notice, (PointT<float>{340.0f, 16.0f}));
    screen->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 90.0f});
    EXPECT_EQ(screen->GetOfflineSection()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 59.0f, 340.0f, 16.0f}));
}

}  // namespace
}  // namespace vantrokelui::view::testing
