// The project row: its layout for both skins, hover and the current-project mark, and what a
// press, Enter or Space does to the proposal and the panel's view.
#include <QAccessible>
#include <QApplication>
#include <QEnterEvent>
#include <QEvent>
#include <QTest>

#include <gtest/gtest.h>

#include <kelui/skins/Theme.h>
#include <kelui/ui/QtConversions.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/view/ProjectListItem.h>

#include "LocationPickerFixture.h"

namespace vantrokelui::view::testing {
namespace {

using kelcore::geom::RectT;

class ProjectListItemTest : public LocationPickerFixture {
protected:
    void TearDown() override {
        kelui::skins::SetRunningV7OrBeyond(true);
        LocationPickerFixture::TearDown();
    }

    boost::intrusive_ptr<ProjectListItem> MakeRow(const LocalProject& project) {
        return Place(boost::intrusive_ptr<ProjectListItem>(
                         new ProjectListItem(project.project, tree.user, viewModel)),
                     295.0f, 20.0f);
    }
};

TEST_F(ProjectListItemTest, RecommendsTwoNinetyFiveByTwenty) {
    const auto row = MakeRow(tree.spring);
    EXPECT_EQ(sharedui::GetRecommendedSize(row), (kelcore::geom::PointT<float>{295.0f, 20.0f}));
}

TEST_F(ProjectListItemTest, NewSkinPlacesIconNameAndChevron) {
    const auto row = MakeRow(tree.spring);
    const float rh = sharedui::GetRecommendedSize(row->GetNameText()).y;
    const float limit = 295.0f - 21.0f;
    EXPECT_EQ(row->GetProjectIcon()->UI_GetLocalRectF(),
              (RectT<float>{6.13f, (20.0f - 13.12f) / 2.0f, 13.29f, 13.12f}));
    EXPECT_EQ(row->GetNameText()->UI_GetLocalRectF(),
              (RectT<float>{26.01f, (20.0f - rh - 2.0f) / 2.0f, limit - 8.0f - 26.01f, rh}));
    EXPECT_EQ(row->GetChevronImage()->UI_GetLocalRectF(),
              (RectT<float>{limit, (20.0f - 19.0f) / 2.0f, 18.0f, 18.0f}));
    EXPECT_EQ(row->GetNameText()->GetText(), u"Spring Campaign");
    EXPECT_NE(row->GetProjectIcon()->GetImage(), nullptr);
    EXPECT_NE(row->GetChevronImage()->GetImage(), nullptr);
}

TEST_F(ProjectListItemTest, OlderSkinPlacesChevronNearerTheEdge) {
    kelui::skins::SetRunningV7OrBeyond(false);
    const auto row = MakeRow(tree.spring);
    const float rh = sharedui::GetRecommendedSize(row->GetNameText()).y;
    const float limit = 295.0f - 14.0f;
    EXPECT_EQ(row->GetNameText()->UI_GetLocalRectF(),
              (RectT<float>{26.01f, (20.0f - rh - 2.0f) / 2.0f, limit - 8.0f - 26.01f, rh}));
    EXPECT_EQ(row->GetChevronImage()->UI_GetLocalRectF(),
              (RectT<float>{limit, (20.0f - 9.0f) / 2.0f, 6.0f, 8.0f}));
}

TEST_F(ProjectListItemTest, ClickProposesTheRootFolderAndOpensTheFolderStep) {
    const auto row = MakeRow(tree.autumn);
    QTest::mouseClick(row->GetWidget(), Qt::LeftButton, Qt::NoModifier, QPoint(40, 10));
    EXPECT_EQ(tree.user->GetProposedSelection(), tree.autumn.root);
    EXPECT_EQ(View(), ViewID::SelectFolder);
}

TEST_F(ProjectListItemTest, ClickOnProjectWithoutRootFolderProposesNullAndStillMovesOn) {
    const auto bare = MakeNode<VantroProject>(tree.editors, u"Not Yet Loaded");
    tree.user->SetProposedSelection(tree.spring.folder);
    Pump();
    const auto row = Place(
        boost::intrusive_ptr<ProjectListItem>(new ProjectListItem(bare, tree.user, viewModel)),
        295.0f, 20.0f);
    QTest::mouseClick(row->GetWidget(), Qt::LeftButton, Qt::NoModifier, QPoint(40, 10));
    EXPECT_EQ(tree.user->GetProposedSelection(), nullptr);
    EXPECT_EQ(View(), ViewID::SelectFolder);
}

TEST_F(ProjectListItemTest, ClickOnProjectHoldingTheProposalKeepsTheProposedFolder) {
    tree.user->SetProposedSelection(tree.autumn.folder);
    const auto row = MakeRow(tree.autumn);
    ASSERT_TRUE(row->IsCurrentProject());
    QTest::mouseClick(row->GetWidget(), Qt::LeftButton, Qt::NoModifier, QPoint(40, 10));
    EXPECT_EQ(tree.user->GetProposedSelection(), tree.autumn.folder);
    EXPECT_EQ(View(), ViewID::SelectFolder);
}

TEST_F(ProjectListItemTest, SecondaryClickChangesNothing) {
    const auto row = MakeRow(tree.autumn);
    QTest::mouseClick(row->GetWidget(), Qt::RightButton, Qt::NoModifier, QPoint(40, 10));
    EXPECT_EQ(tree.user->GetProposedSelection(), nullptr);
    EXPECT_EQ(View(), ViewID::SelectProject);
}

TEST_F(ProjectListItemTest, CurrentProjectFollowsTheProposal) {
    const auto row = MakeRow(tree.spring);
    EXPECT_FALSE(row->IsCurrentProject());
    tree.user->SetProposedSelection(tree.spring.folder);
    Pump();
    EXPECT_TRUE(row->IsCurrentProject());
    tree.user->SetProposedSelection(tree.autumn.root);
    Pump();
    EXPECT_FALSE(row->IsCurrentProject());
    tree.user->SetProposedSelection(nullptr);
    Pump();
    EXPECT_FALSE(row->IsCurrentProject());
}

TEST_F(ProjectListItemTest, HoverTintsTheNameAndLeavingRestoresIt) {
    const auto row = MakeRow(tree.spring);
    QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), QPointF(105, 105));
    QApplication::sendEvent(row->GetWidget(), &enter);
    EXPECT_TRUE(row->IsHovered());
    const auto theme = row->UI_GetDrawSupplier()->GetTheme();
    EXPECT_EQ(row->GetNameText()->GetTextColor(), kelui::skins::GetPaletteGrayColor(theme, 9));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(row->GetWidget(), &leave);
    EXPECT_FALSE(row->IsHovered());
    EXPECT_FALSE(row->GetNameText()->GetTextColor().has_value());
}

TEST_F(ProjectListItemTest, HoveredRowIsFilledWithPaletteGrayFour) {
    const auto row = MakeRow(tree.spring);
    const auto theme = row->UI_GetDrawSupplier()->GetTheme();
    const QRgb fill = kelui::ui::ToQColor(kelui::skins::GetPaletteGrayColor(theme, 4)).rgb();
    // The name starts at 26: the pixel at (150, 2) is highlight or nothing.
    EXPECT_NE(row->GetWidget()->grab().toImage().pixelColor(150, 2).rgb(), fill);
    QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), QPointF(105, 105));
    QApplication::sendEvent(row->GetWidget(), &enter);
    EXPECT_EQ(row->GetWidget()->grab().toImage().pixelColor(150, 2).rgb(), fill);
}

TEST_F(ProjectListItemTest, EnterAndSpaceActivateTheFocusedRow) {
    const auto row = MakeRow(tree.documentary);
    EXPECT_EQ(row->GetWidget()->focusPolicy(), Qt::StrongFocus);
    QTest::keyClick(row->GetWidget(), Qt::Key_Return);
    EXPECT_EQ(tree.user->GetProposedSelection(), tree.documentary.root);
    EXPECT_EQ(View(), ViewID::SelectFolder);

    viewModel->SetCurrentViewID(ViewID::SelectProject);
    tree.user->SetProposedSelection(nullptr);
    Pump();
    QTest::keyClick(row->GetWidget(), Qt::Key_Space);
    EXPECT_EQ(tree.user->GetProposedSelection(), tree.documentary.root);
    EXPECT_EQ(View(), ViewID::SelectFolder);
}

TEST_F(ProjectListItemTest, ScreenReadersHearTheProjectName) {
    const auto row = MakeRow(tree.teaser);
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(row->GetWidget());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), QString("Client Teaser"));
}

TEST_F(ProjectListItemTest, PressAfterTheViewModelDiedDoesNothing) {
    boost::intrusive_ptr<ProjectListItem> row(
        new ProjectListItem(tree.spring.project, tree.user, viewModel));
    Place(row, 295.0f, 20.0f);
    const auto user = tree.user;
    std::weak_ptr<viewmodel::ShareForReviewViewModel> weakModel = viewModel;
    viewModel.reset();
    Pump();
    ASSERT_TRUE(weakModel.expired());
    row->Activate();
    EXPECT_EQ(user->GetProposedSelection(), nullptr);
}

}  // namespace
}  // namespace vantrokelui::view::testing
