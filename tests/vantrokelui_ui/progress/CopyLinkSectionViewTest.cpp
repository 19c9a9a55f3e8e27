#include <vantrokelui/view/CopyLinkSectionView.h>

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <kelappsupport/analytics/UsageEventsCapturedForTesting.h>
#include <vantrokelui/model/ShareManager.h>
#include <vantrokelui/sharedui/WorkflowSectionView.h>

#include "ProgressViewFixture.h"

namespace vantrokelui::view {
namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;
using testing::ProgressViewFixture;
using testing::ViewID;

class CopyLinkSectionViewTest : public ProgressViewFixture {
protected:
    void TearDown() override {
        invalidations.reset();
        // A share that a test started leaves its job with the process's manager: drop it.
        for (const auto& render : Renders()) {
            model::ShareManager::GetInstance().CleanupCanceledJobInSarvex(render.jobID,
                                                                          render.outputFilePath);
        }
        ProgressViewFixture::TearDown();
    }

    boost::intrusive_ptr<CopyLinkSectionView> MakeEndScreen() {
        auto view = MakeView<CopyLinkSectionView>(ViewID::CopyLinkSection);
        // From here on, every value of InvalidateParentForChild is a request for a new size.
        invalidations = viewModel->AddInvalidateParentForChildBinding(
            [this](bool value) { sizeRequests.push_back(value); });
        Pump();
        sizeRequests.clear();
        return view;
    }

    /// The strip's rectangle reaches the bottom of its button, 40 below its note; the screen's
    /// height counts 38 for it.
    static float StripRectHeight(const CopyLinkSectionView& view) {
        return view.GetUpdateContentView()->GetTextHeight() + 40.0f;
    }

    std::vector<bool> sizeRequests;
    std::shared_ptr<utility::DataBinding> invalidations;
};

TEST_F(CopyLinkSectionViewTest, HoldsLabelLinkRowNoticeAndStripInThatOrder) {
    const auto view = MakeEndScreen();

    ASSERT_EQ(view->ChildCount(), 4u);
    EXPECT_EQ(view->ChildAt(0), view->GetWorkflowLabel());
    EXPECT_EQ(view->ChildAt(1), view->GetCopyLinkSection());
    EXPECT_EQ(view->ChildAt(2), view->GetOfflineSection());
    EXPECT_EQ(view->ChildAt(3), view->GetUpdateContentView());
    EXPECT_TRUE(view->UI_IsShown());
    EXPECT_TRUE(view->GetWorkflowLabel()->UI_IsShown());
    EXPECT_TRUE(view->GetCopyLinkSection()->UI_IsShown());
    EXPECT_EQ(view->GetWorkflowLabel()->GetNameText()->GetText(), u"Cut 1");
}

TEST_F(CopyLinkSectionViewTest, TheHeaderMenuSignsOutOrStartsANewLink) {
    const auto view = MakeEndScreen();
    const auto& menu = view->GetWorkflowLabel()->GetMenuPopup();

    ASSERT_EQ(menu->GetItemCount(), 2);
    EXPECT_EQ(menu->GetItemText(0), u"Sign out of Vantro");
    EXPECT_EQ(menu->GetItemText(1), u"Create new link");
    EXPECT_TRUE(menu->UI_IsShown());
}

TEST_F(CopyLinkSectionViewTest, WithNoChangesInTheSequenceTheStripIsHiddenAndTheScreenIs75High) {
    const auto view = MakeEndScreen();

    EXPECT_EQ(sharedui::GetRecommendedSize(view), (PointT<float>{340.0f, 75.0f}));
    EXPECT_FALSE(view->GetUpdateContentView()->UI_IsShown());
    EXPECT_FALSE(view->GetOfflineSection()->UI_IsShown());
    EXPECT_EQ(view->GetWorkflowLabel()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 10.0f, 310.0f, 20.0f}));
    EXPECT_EQ(view->GetOfflineSection()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 40.0f, 0.0f, 0.0f}));
    EXPECT_EQ(view->GetCopyLinkSection()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 40.0f, 310.0f, 20.0f}));
    EXPECT_EQ(view->GetUpdateContentView()->UI_GetLocalRectF(),
              (RectT<float>{0.0f, 60.0f, 340.0f, StripRectHeight(*view)}));
}

TEST_F(CopyLinkSectionViewTest,
       GoingOfflineShowsTheNoticeAboveTheLinkDisablesTheStripAndGrowsBy26) {
    const auto view = MakeEndScreen();
    const float before = sharedui::GetRecommendedSize(view).y;

    viewModel->SetIsNetworkConnected(false);
    Pump();
    ASSERT_EQ(sizeRequests.size(), 1u);
    Resize(view);

    EXPECT_EQ(sharedui::GetRecommendedSize(view).y, before + 26.0f);
    EXPECT_EQ(view->UI_GetLocalRectF(), (RectT<float>{0.0f, 0.0f, 340.0f, 101.0f}));
    EXPECT_TRUE(view->GetOfflineSection()->UI_IsShown());
    EXPECT_EQ(view->GetOfflineSection()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 40.0f, 340.0f, 16.0f}));
    EXPECT_EQ(view->GetCopyLinkSection()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 66.0f, 310.0f, 20.0f}));
    EXPECT_FALSE(view->GetUpdateContentView()->UI_IsEnabled());
    EXPECT_FALSE(view->GetUpdateContentView()->GetUpdateButton()->GetWidget()->isEnabled());
}

TEST_F(CopyLinkSectionViewTest, ComingBackOnlineHidesTheNoticeAndShrinksAgain) {
    const auto view = MakeEndScreen();
    viewModel->SetIsNetworkConnected(false);
    Pump();
    Resize(view);

    viewModel->SetIsNetworkConnected(true);
    Pump();
    Resize(view);

    EXPECT_EQ(sizeRequests.size(), 2u);
    EXPECT_EQ(view->UI_GetLocalRectF(), (RectT<float>{0.0f, 0.0f, 340.0f, 75.0f}));
    EXPECT_FALSE(view->GetOfflineSection()->UI_IsShown());
    EXPECT_EQ(view->GetCopyLinkSection()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 40.0f, 310.0f, 20.0f}));
    EXPECT_TRUE(view->GetUpdateContentView()->UI_IsEnabled());
}

TEST_F(CopyLinkSectionViewTest, EachRealChangeAsksForOneNewSizeAndRepeatsAskForNone) {
    const auto view = MakeEndScreen();
    const bool start = viewModel->GetInvalidateParentForChild();

    viewModel->SetActiveAssetDirty(true);
    viewModel->SetIsNetworkConnected(false);
    Pump();

    // Two changes flip the flag twice: it ends where it began, yet both reached the host.
    EXPECT_EQ(sizeRequests, (std::vector<bool>{!start, start}));
    EXPECT_EQ(viewModel->GetInvalidateParentForChild(), start);

    // The bindings deliver each value once more to a new subscriber; the screen shows it already.
    sizeRequests.clear();
    const auto again = MakeView<CopyLinkSectionView>(ViewID::CopyLinkSection);
    Pump();
    EXPECT_TRUE(sizeRequests.empty());
}

TEST_F(CopyLinkSectionViewTest, AModifiedSequenceShowsTheUpdateStripBelowTheLinkRow) {
    const auto view = MakeEndScreen();

    viewModel->SetActiveAssetDirty(true);
    Pump();
    ASSERT_EQ(sizeRequests.size(), 1u);
    Resize(view);

    const auto& strip = view->GetUpdateContentView();
    const float text = strip->GetTextHeight();
    EXPECT_TRUE(strip->UI_IsShown());
    EXPECT_TRUE(strip->UI_IsEnabled());
    EXPECT_EQ(sharedui::GetRecommendedSize(view),
              (PointT<float>{340.0f, std::ceil(75.0f + text + 38.0f)}));
    EXPECT_EQ(strip->UI_GetLocalRectF(), (RectT<float>{0.0f, 60.0f, 340.0f, text + 40.0f}));
    // The button ends inside the strip, so Qt draws all of it.
    const RectT<float> button = strip->GetUpdateButton()->UI_GetLocalRectF();
    EXPECT_LE(button.y + button.height, strip->UI_GetLocalRectF().height);
    EXPECT_EQ(strip->GetNotifyingText()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 10.0f, 310.0f, text}));
    EXPECT_EQ(strip->GetUpdateButton()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, text + 20.0f, 310.0f, 20.0f}));
}

TEST_F(CopyLinkSectionViewTest, OfflineAndModifiedAtOpeningAreMeasuredRightTheFirstTime) {
    viewModel->SetActiveAssetDirty(true);
    viewModel->SetIsNetworkConnected(false);
    viewModel->SetCurrentViewID(ViewID::CopyLinkSection);
    Pump();
    boost::intrusive_ptr<sharedui::WorkflowSectionView> section(
        new sharedui::WorkflowSectionView(nullptr, {}, nullptr));
    root->ChildPushBack(section);
    boost::intrusive_ptr<CopyLinkSectionView> view(new CopyLinkSectionView(viewModel));

    // The screen manager's way: one measure, one size.
    section->SetContent(view);
    Pump();

    const float strip = view->GetUpdateContentView()->GetTextHeight() + 38.0f;
    EXPECT_EQ(view->UI_GetLocalRectF().height, std::ceil(75.0f + strip + 26.0f));
    EXPECT_TRUE(view->GetOfflineSection()->UI_IsShown());
    EXPECT_TRUE(view->GetUpdateContentView()->UI_IsShown());
    EXPECT_FALSE(view->GetUpdateContentView()->UI_IsEnabled());
    EXPECT_EQ(view->GetUpdateContentView()->UI_GetLocalRectF(),
              (RectT<float>{0.0f, 86.0f, 340.0f, strip + 2.0f}));
}

TEST_F(CopyLinkSectionViewTest, UpdateStartsANewVersionOfTheStoredShareWithoutAStorageCheck) {
    StoreEarlierShare();
    viewModel->SetActiveAssetDirty(true);
    Pump();
    const auto view = MakeEndScreen();
    kelappsupport::analytics::UsageEventsCapturedForTesting events;

    Click(view->GetUpdateContentView()->GetUpdateButton());
    Pump();

    // No service is signed in, so a storage check would never have answered: the render shows
    // that none was asked.
    const auto renders = Renders();
    ASSERT_EQ(renders.size(), 1u);
    EXPECT_EQ(renders[0].presetPath, u"/presets/h264-match.epr");
    EXPECT_EQ(viewModel->GetCurrentViewID(), ViewID::EncodingQueued);
    EXPECT_FALSE(host->Find(guids, model::kSelectedEncoderPresetKey).has_value());
    const auto logged = events.Events();
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_EQ(logged[0].GetType(), "start");
    EXPECT_EQ(logged[0].GetSubtype(), "update-content");
}

TEST_F(CopyLinkSectionViewTest, WhileOfflineTheUpdateButtonDoesNothing) {
    StoreEarlierShare();
    viewModel->SetActiveAssetDirty(true);
    viewModel->SetIsNetworkConnected(false);
    Pump();
    const auto view = MakeEndScreen();
    kelappsupport::analytics::UsageEventsCapturedForTesting events;

    Click(view->GetUpdateContentView()->GetUpdateButton());
    Pump();

    EXPECT_TRUE(Renders().empty());
    EXPECT_TRUE(events.Events().empty());
}

TEST_F(CopyLinkSectionViewTest, TheUpdateStripSaysWhatChangedAndOffersTheUpdate) {
    boost::intrusive_ptr<UpdateContentView> strip(new UpdateContentView(viewModel));
    root->ChildPushBack(strip);

    strip->UI_SetLocalRectF({0.0f, 60.0f, 340.0f, strip->GetTextHeight() + 38.0f});

    EXPECT_FALSE(strip->UI_IsShown());
    EXPECT_TRUE(strip->GetNotifyingText()->UI_IsShown());
    EXPECT_TRUE(strip->GetNotifyingText()->IsMultiLine());
    EXPECT_EQ(strip->GetNotifyingText()->GetText(),
              u"You made changes since this sequence was last shared");
    EXPECT_TRUE(strip->GetUpdateButton()->UI_IsShown());
    EXPECT_EQ(strip->GetUpdateButton()->GetText(), u"Update shared content");
    // Not rounded, unlike what the screens measure their texts with.
    EXPECT_EQ(std::ceil(strip->GetTextHeight()),
              sharedui::MeasureTextHeight(strip->GetNotifyingText(), 310.0f));
    EXPECT_GT(strip->GetTextHeight(), 0.0f);
}

}  // namespace
}  // namespace vantrokelui::view
