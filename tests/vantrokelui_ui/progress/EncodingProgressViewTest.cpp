#include <vantrokelui/view/EncodingProgressView.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include <QAccessible>
#include <QProgressBar>

#include <gtest/gtest.h>

#include <kelui/controls/UI_ProgressBar.h>
#include <kelui/skins/Theme.h>
#include <vantrokelui/model/ShareManager.h>

#include "ProgressViewFixture.h"

namespace vantrokelui::view {
namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;
using kelcore::string::string;
using testing::ProgressViewFixture;
using testing::ViewID;

class EncodingProgressViewTest : public ProgressViewFixture {
protected:
    void TearDown() override {
        kelui::skins::SetRunningV7OrBeyond(true);
        ProgressViewFixture::TearDown();
    }

    boost::intrusive_ptr<EncodingProgressView> MakeUploadScreen() {
        return MakeView<EncodingProgressView>(ViewID::UploadProgress);
    }

    /// The time-left text after the pipeline publishes `seconds`, following an estimate of 42
    /// seconds (so that a blank answer is one the screen made).
    string TimeLeftFor(double seconds) {
        const auto view = MakeUploadScreen();
        viewModel->SetProcessingRemainingTime(42.0);
        Pump();
        EXPECT_EQ(view->GetTimeLeftText()->GetText(), u"42 secs left");
        viewModel->SetProcessingRemainingTime(seconds);
        Pump();
        return view->GetTimeLeftText()->GetText();
    }

    /// The speed text after the pipeline publishes `megabitsPerSecond`, following a speed of 7.
    string SpeedFor(double megabitsPerSecond) {
        const auto view = MakeUploadScreen();
        viewModel->SetUploadingSpeed(7.0);
        Pump();
        EXPECT_EQ(view->GetSpeedText()->GetText(), u"7 Mbps");
        viewModel->SetUploadingSpeed(megabitsPerSecond);
        Pump();
        return view->GetSpeedText()->GetText();
    }

    static QProgressBar& QtBarOf(const EncodingProgressView& view) {
        return *qobject_cast<QProgressBar*>(view.GetProgressBar()->GetWidget());
    }
};

// --- the stage ---------------------------------------------------------------------------------

TEST_F(EncodingProgressViewTest, TheQueuedStageSaysItWaitsInTheEncoder) {
    const auto view = MakeView<EncodingProgressView>(ViewID::EncodingQueued);
    EXPECT_EQ(view->GetStatusText()->GetText(), u"Queued in Sarvex");
}

TEST_F(EncodingProgressViewTest, TheEncodingStageSaysEncodingInProgress) {
    const auto view = MakeView<EncodingProgressView>(ViewID::EncodingProgress);
    EXPECT_EQ(view->GetStatusText()->GetText(), u"Encoding in Progress...");
}

TEST_F(EncodingProgressViewTest, TheUploadStageSaysUploadInProgressAndNamesTheBarSo) {
    const auto view = MakeUploadScreen();
    EXPECT_EQ(view->GetStatusText()->GetText(), u"Upload in Progress...");
    QAccessibleInterface* bar = QAccessible::queryAccessibleInterface(&QtBarOf(*view));
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->text(QAccessible::Name), QStringLiteral("Upload in Progress..."));
}

TEST_F(EncodingProgressViewTest, AnyOtherScreenLeavesTheStageEmpty) {
    const auto view = MakeView<EncodingProgressView>(ViewID::CopyLinkSection);
    EXPECT_TRUE(view->GetStatusText()->GetText().empty());
}

TEST_F(EncodingProgressViewTest, TheStageIsFixedForTheLifeOfTheScreen) {
    const auto view = MakeView<EncodingProgressView>(ViewID::EncodingQueued);

    viewModel->SetCurrentViewID(ViewID::EncodingProgress);
    Pump();

    EXPECT_EQ(view->GetStatusText()->GetText(), u"Queued in Sarvex");
}

TEST_F(EncodingProgressViewTest, HoldsItsPartsInOrderAllShownWithTheLinkOfTheShare) {
    const auto view = MakeUploadScreen();

    ASSERT_EQ(view->ChildCount(), 7u);
    EXPECT_EQ(view->ChildAt(0), view->GetWorkflowLabel());
    EXPECT_EQ(view->ChildAt(1), view->GetCopyLinkSection());
    EXPECT_EQ(view->ChildAt(2), view->GetStatusText());
    EXPECT_EQ(view->ChildAt(3), view->GetSpeedText());
    EXPECT_EQ(view->ChildAt(4), view->GetTimeLeftText());
    EXPECT_EQ(view->ChildAt(5), view->GetProgressBar());
    EXPECT_EQ(view->ChildAt(6), view->GetCancelButton());
    for (const auto& child : view->GetChildren()) {
        EXPECT_TRUE(child->UI_IsShown());
    }
    EXPECT_EQ(view->GetCopyLinkSection()->GetLinkText()->GetText(), kLink);
    EXPECT_EQ(view->GetWorkflowLabel()->GetNameText()->GetText(), u"Cut 1");
    EXPECT_FALSE(view->GetWorkflowLabel()->GetMenuPopup()->UI_IsShown());
    EXPECT_EQ(view->GetCancelButton()->GetText(), u"Cancel");
    EXPECT_TRUE(view->GetCancelButton()->UI_IsEnabled());
}

// --- time left ---------------------------------------------------------------------------------

TEST_F(EncodingProgressViewTest, NoTimeLeftShowsNothing) {
    EXPECT_TRUE(TimeLeftFor(0.0).empty());
}

TEST_F(EncodingProgressViewTest, HalfASecondLeftShowsNothing) {
    EXPECT_TRUE(TimeLeftFor(0.5).empty());
}

TEST_F(EncodingProgressViewTest, JustUnderAMinuteShowsTheWholeSecondsOnly) {
    EXPECT_EQ(TimeLeftFor(59.9), u"59 secs left");
}

TEST_F(EncodingProgressViewTest, AMinuteShowsOneMinuteAndZeroSeconds) {
    EXPECT_EQ(TimeLeftFor(60.0), u"1 mins 0 secs left");
}

TEST_F(EncodingProgressViewTest, AnHourShowsOneHourZeroMinutesAndZeroSeconds) {
    EXPECT_EQ(TimeLeftFor(3600.0), u"1 hr 0 mins 0 secs left");
}

TEST_F(EncodingProgressViewTest, MoreThanNinetyNineHoursShowsTheLongestTimeItCanSay) {
    EXPECT_EQ(TimeLeftFor(500000.0), u"99 hr 59 mins 59 secs left");
}

TEST_F(EncodingProgressViewTest, ANewTimeStaysRightAlignedOnTheColumn) {
    const auto view = MakeUploadScreen();
    viewModel->SetProcessingRemainingTime(3725.0);
    Pump();
    const float wide = view->GetTimeLeftText()->UI_GetLocalRectF().width;

    viewModel->SetProcessingRemainingTime(5.0);
    Pump();

    EXPECT_EQ(view->GetTimeLeftText()->GetText(), u"5 secs left");
    const RectT<float> time = view->GetTimeLeftText()->UI_GetLocalRectF();
    EXPECT_LT(time.width, wide);
    EXPECT_EQ(time.x + time.width, 325.0f);
}

// --- speed -------------------------------------------------------------------------------------

TEST_F(EncodingProgressViewTest, NoSpeedShowsNothing) {
    EXPECT_TRUE(SpeedFor(0.0).empty());
}

TEST_F(EncodingProgressViewTest, ASpeedWithinEpsilonOfZeroShowsNothing) {
    EXPECT_TRUE(SpeedFor(1e-17).empty());
}

TEST_F(EncodingProgressViewTest, ASpeedOfZeroPointFourShowsZeroMbps) {
    EXPECT_EQ(SpeedFor(0.4), u"0 Mbps");
}

TEST_F(EncodingProgressViewTest, AHalfwaySpeedRoundsAwayFromZero) {
    EXPECT_EQ(SpeedFor(2.5), u"3 Mbps");
}

// --- the bar -----------------------------------------------------------------------------------

TEST_F(EncodingProgressViewTest, ProgressZeroShowsTheBusyBarNotAnEmptyOne) {
    const auto view = MakeUploadScreen();
    viewModel->SetEncodingProgress(0.5);
    Pump();

    viewModel->SetEncodingProgress(0.0);
    Pump();

    EXPECT_TRUE(view->GetProgressBar()->IsValueUnknown());
    EXPECT_EQ(QtBarOf(*view).minimum(), 0);
    EXPECT_EQ(QtBarOf(*view).maximum(), 0);
}

TEST_F(EncodingProgressViewTest, AFreshScreenWithNoProgressYetIsBusy) {
    const auto view = MakeUploadScreen();
    EXPECT_TRUE(view->GetProgressBar()->IsValueUnknown());
}

TEST_F(EncodingProgressViewTest, ProgressOfNineNineNineFiveDraws999Of1000) {
    const auto view = MakeUploadScreen();

    viewModel->SetEncodingProgress(0.9995);
    Pump();

    EXPECT_FALSE(view->GetProgressBar()->IsValueUnknown());
    EXPECT_EQ(view->GetProgressBar()->GetValue(), 999);
    EXPECT_EQ(view->GetProgressBar()->GetMaximum(), 1000);
}

TEST_F(EncodingProgressViewTest, InTheOlderSkinTheBarHasAPaletteTrackAndIs12High) {
    kelui::skins::SetRunningV7OrBeyond(false);
    const auto view = MakeUploadScreen();

    const auto theme = view->UI_GetDrawSupplier()->GetTheme();
    const auto track =
        view->GetProgressBar()->GetCustomThemeColor(kelui::controls::UI_ProgressBar::kTrackColorID);
    ASSERT_TRUE(track.has_value());
    EXPECT_EQ(*track, kelui::skins::GetPaletteGrayColor(theme, 0));
    EXPECT_EQ(view->GetProgressBar()->UI_GetLocalRectF().height, 12.0f);
}

TEST_F(EncodingProgressViewTest, InTheCurrentSkinTheBarKeepsTheThemeTrack) {
    const auto view = MakeUploadScreen();
    EXPECT_FALSE(view->GetProgressBar()
                     ->GetCustomThemeColor(kelui::controls::UI_ProgressBar::kTrackColorID)
                     .has_value());
    EXPECT_GT(view->GetProgressBar()->UI_GetLocalRectF().height, 0.0f);
}

// --- layout ------------------------------------------------------------------------------------

TEST_F(EncodingProgressViewTest, IsAlways340By149) {
    const auto view = MakeUploadScreen();
    viewModel->SetProcessingRemainingTime(3725.0);
    viewModel->SetUploadingSpeed(12.0);
    Pump();
    EXPECT_EQ(sharedui::GetRecommendedSize(view), (PointT<float>{340.0f, 149.0f}));
}

TEST_F(EncodingProgressViewTest, LaysOutStageSpeedAndTimeOnOneLineAboveTheBarAndCancel) {
    const auto view = MakeUploadScreen();
    viewModel->SetProcessingRemainingTime(200.0);
    viewModel->SetUploadingSpeed(12.3);
    Pump();

    EXPECT_EQ(view->GetWorkflowLabel()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 10.0f, 310.0f, 20.0f}));
    EXPECT_EQ(view->GetCopyLinkSection()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 40.0f, 310.0f, 20.0f}));
    const PointT<float> status = sharedui::GetRecommendedSize(view->GetStatusText());
    EXPECT_EQ(view->GetStatusText()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 70.0f, status.x, status.y}));
    const PointT<float> time = sharedui::GetRecommendedSize(view->GetTimeLeftText());
    EXPECT_EQ(view->GetTimeLeftText()->GetText(), u"3 mins 20 secs left");
    EXPECT_EQ(view->GetTimeLeftText()->UI_GetLocalRectF(),
              (RectT<float>{325.0f - time.x, 70.0f, time.x, time.y}));
    const PointT<float> speed = sharedui::GetRecommendedSize(view->GetSpeedText());
    EXPECT_EQ(view->GetSpeedText()->GetText(), u"12 Mbps");
    EXPECT_EQ(view->GetSpeedText()->UI_GetLocalRectF(),
              (RectT<float>{325.0f - time.x - speed.x - 10.0f, 70.0f, speed.x, speed.y}));
    const float barTop = std::floor(70.0f + status.y + 4.0f + 0.9f);
    const float barHeight = sharedui::GetRecommendedSize(view->GetProgressBar()).y;
    EXPECT_EQ(view->GetProgressBar()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, barTop, 310.0f, barHeight}));
    const PointT<float> cancel = sharedui::GetRecommendedSize(view->GetCancelButton());
    EXPECT_EQ(view->GetCancelButton()->UI_GetLocalRectF(),
              (RectT<float>{324.0f - cancel.x, 134.0f - cancel.y, cancel.x, cancel.y}));
    // Nothing overlaps: the bar ends above Cancel, and the speed ends before the time.
    EXPECT_LE(barTop + barHeight, 134.0f - cancel.y);
    EXPECT_GT(325.0f - time.x - speed.x - 10.0f, 15.0f + status.x);
}

TEST_F(EncodingProgressViewTest, CancelFollowsTheBottomOfALargerScreen) {
    const auto view = MakeUploadScreen();

    view->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 200.0f});

    const PointT<float> cancel = sharedui::GetRecommendedSize(view->GetCancelButton());
    EXPECT_EQ(view->GetCancelButton()->UI_GetLocalRectF().y, 185.0f - cancel.y);
}

// --- cancel ------------------------------------------------------------------------------------

TEST_F(EncodingProgressViewTest, CancelTakesTheRenderingJobFromTheEncoderAndClosesThePanel) {
    const auto file =
        std::filesystem::temp_directory_path() /
        ("progress-cancel-" + kelcore::utility::Guid::CreateUnique().AsStdString() + ".mp4");
    std::ofstream(file) << "partial render";
    auto& manager = model::ShareManager::GetInstance();
    model::ReviewAttributes review;
    review.reviewLinkURL = string(kLink);
    manager.AddJobToMap(u"job-cancel", guids, {EncodingStatus::Encoding, 0.4}, review,
                        kelcore::string::StdToUTF16String(file.string()));
    manager.SetCurrentActiveSequenceAndProperties();
    const auto view = MakeView<EncodingProgressView>(ViewID::EncodingProgress);
    ASSERT_EQ(manager.GetActiveSequenceJobID(), u"job-cancel");
    ASSERT_EQ(viewModel->GetReviewLinkURL(), kLink);

    Click(view->GetCancelButton());
    Pump();

    EXPECT_EQ(Cancels(), std::vector<string>{u"job-cancel"});
    EXPECT_EQ(manager.GetJobW(u"job-cancel"), nullptr);
    EXPECT_TRUE(manager.GetActiveSequenceJobID().empty());
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_TRUE(viewModel->GetReviewLinkURL().empty());
    EXPECT_EQ(viewModel->GetCurrentViewID(), ViewID::None);
}

TEST_F(EncodingProgressViewTest, CancelWithoutAJobStillClosesThePanel) {
    const auto view = MakeUploadScreen();

    Click(view->GetCancelButton());
    Pump();

    EXPECT_TRUE(Cancels().empty());
    EXPECT_EQ(viewModel->GetReviewLinkURL(), kLink);
    EXPECT_EQ(viewModel->GetCurrentViewID(), ViewID::None);
}

TEST_F(EncodingProgressViewTest, EnterOnTheFocusedCancelButtonCancelsToo) {
    const auto view = MakeUploadScreen();
    QWidget* cancel = view->GetCancelButton()->GetWidget();
    ASSERT_EQ(cancel->focusPolicy(), Qt::StrongFocus);

    cancel->setFocus(Qt::TabFocusReason);
    QTest::keyClick(cancel, Qt::Key_Return);
    Pump();

    EXPECT_EQ(viewModel->GetCurrentViewID(), ViewID::None);
}

}  // namespace
}  // namespace vantrokelui::view
