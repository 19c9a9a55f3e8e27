// The folder step's header: its names, its layout, its highlight and its way back.

#include <QAccessible>
#include <QApplication>
#include <QEnterEvent>
#include <QTest>

#include <gtest/gtest.h>

#include <kelui/skins/Theme.h>
#include <kelui/ui/QtConversions.h>

#include "FolderPickerFixture.h"

namespace vantrokelui::view::testing {
namespace {

using FolderPickerHeaderView_ = FolderPickerFixture;

TEST_F(FolderPickerHeaderView_, ShowsTheProjectAndWorkspaceOfTheCurrentFolder) {
    user->SetProposedSelection(root);
    ShowPicker();
    const auto& header = picker->GetHeader();

    EXPECT_EQ(header->GetProjectText()->GetText(), u"Alpha");
    EXPECT_EQ(header->GetProjectText()->GetFontStyleName(), "Bold");
    EXPECT_EQ(header->GetWorkspaceText()->GetText(), u"Editors");
    EXPECT_TRUE(header->GetProjectText()->UI_IsViewVisible());
    EXPECT_TRUE(header->GetWorkspaceText()->UI_IsViewVisible());
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(header->GetWidget());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(kelui::ui::FromQString(accessible->text(QAccessible::Name)), u"Alpha");
}

TEST_F(FolderPickerHeaderView_, LaysOutChevronIconAndTexts) {
    user->SetProposedSelection(root);
    ShowPicker();
    const auto& header = picker->GetHeader();
    const bool newSkin = kelui::skins::IsRunningV7OrBeyond();
    const float w = 340.0f;
    const float h = 50.0f;

    const float cx = newSkin ? 14.0f : 7.0f;
    const float ch = newSkin ? 19.0f : 9.0f;
    const PointT<float> chevron = newSkin ? PointT<float>{18.0f, 18.0f} : PointT<float>{6.0f, 8.0f};
    EXPECT_EQ(header->GetChevron()->UI_GetLocalRectF(),
              (RectT<float>{cx, (h - ch) / 2.0f, chevron.x, chevron.y}));
    ASSERT_TRUE(header->GetChevron()->GetImage());
    EXPECT_EQ(header->GetChevron()->GetImageRect().width, int(chevron.x));
    const float ix = cx + 16.13f;
    EXPECT_EQ(header->GetProjectIcon()->UI_GetLocalRectF(),
              (RectT<float>{ix, (h - 13.12f) / 2.0f, 13.29f, 13.12f}));
    const float tx = ix + 17.88f;
    const float h1 = sharedui::GetRecommendedSize(header->GetProjectText()).y;
    const float h2 = sharedui::GetRecommendedSize(header->GetWorkspaceText()).y;
    const float ty = (h - h1 - 2.0f - h2) / 2.0f;
    EXPECT_EQ(header->GetProjectText()->UI_GetLocalRectF(), (RectT<float>{tx, ty, w - tx, h1}));
    EXPECT_EQ(header->GetWorkspaceText()->UI_GetLocalRectF(),
              (RectT<float>{tx, ty + h1, w - tx, h2}));
    EXPECT_GT(h1, 0.0f);
    EXPECT_EQ(sharedui::GetRecommendedSize(header), (PointT<float>{310.0f, 20.0f}));
}

TEST_F(FolderPickerHeaderView_, HoverHighlightsAndLeavingClearsIt) {
    user->SetProposedSelection(root);
    ShowPicker();
    const auto& header = picker->GetHeader();
    QWidget* widget = header->GetWidget();
    const QImage plain = widget->grab().toImage();

    QEnterEvent enter(QPointF(20, 20), QPointF(20, 20), widget->mapToGlobal(QPointF(20, 20)));
    QApplication::sendEvent(widget, &enter);
    EXPECT_TRUE(header->IsHovered());
    ASSERT_TRUE(header->GetProjectText()->GetTextColor().has_value());
    const QImage lit = widget->grab().toImage();
    // The highlight fills the header: a pixel away from the texts and icons changes.
    EXPECT_NE(lit.pixelColor(300, 45), plain.pixelColor(300, 45));

    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(widget, &leave);
    EXPECT_FALSE(header->IsHovered());
    EXPECT_FALSE(header->GetProjectText()->GetTextColor().has_value());
}

TEST_F(FolderPickerHeaderView_, APrimaryPressGoesBackToTheProjectStep) {
    user->SetProposedSelection(root);
    ShowPicker();
    viewModel->SetCurrentViewID(ShareForReviewViewID::SelectFolder);
    Pump();
    QWidget* widget = picker->GetHeader()->GetWidget();

    QTest::mouseClick(widget, Qt::RightButton, Qt::NoModifier, QPoint(100, 25));
    Pump();
    EXPECT_EQ(viewModel->GetCurrentViewID(), ShareForReviewViewID::SelectFolder);

    // On the project's name: the texts leave the press to the header.
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, QPoint(60, 20));
    Pump();
    EXPECT_EQ(viewModel->GetCurrentViewID(), ShareForReviewViewID::SelectProject);
}

}  // namespace
}  // namespace vantrokelui::view::testing
