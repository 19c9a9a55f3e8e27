// The project step: the account popup (its items, its choice, the default account), the
// workspace sections that follow the proposed account, the layout table, and the keyboard.
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

#include <kelui/controls/UI_Popup.h>
#include <kelui/ui/QtConversions.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/view/AccountSelectorView.h>
#include <vantrokelui/view/ProjectPickerView.h>
#include <vantrokelui/view/WorkspaceSectionView.h>

#include "LocationPickerFixture.h"

namespace vantrokelui::view::testing {
namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

// The picker as the shell places it: at (0, 27) in a 340 by 392 screen.
constexpr float kPickerTop = 27.0f;

class ProjectPickerViewTest : public LocationPickerFixture {
protected:
    boost::intrusive_ptr<ProjectPickerView> MakePicker() {
        boost::intrusive_ptr<ProjectPickerView> picker(new ProjectPickerView(viewModel));
        root->ChildPushBack(picker);
        Pump();
        const auto size = sharedui::GetRecommendedSize(picker);
        picker->UI_SetLocalRectF({0.0f, kPickerTop, size.x, size.y});
        Pump();
        return picker;
    }

    std::vector<string> SectionTitles(const ProjectPickerView& picker) const {
        std::vector<string> titles;
        for (const auto& section : picker.GetSections()) {
            titles.push_back(section->GetTitleText()->GetText());
        }
        return titles;
    }

    std::vector<string> RowNames(const ProjectPickerView& picker) const {
        std::vector<string> names;
        for (const auto& row : picker.GetRows()) {
            names.push_back(row->GetNameText()->GetText());
        }
        return names;
    }
};

// Account popup ----------------------------------------------------------------------------

TEST_F(ProjectPickerViewTest, FirstSortedAccountBecomesTheDefaultProposal) {
    const auto picker = MakePicker();
    const auto& popup = picker->GetAccountSelector();
    ASSERT_EQ(popup->GetItemCount(), 2);
    EXPECT_EQ(popup->GetItemText(0), u"Northlight Post");
    EXPECT_EQ(popup->GetItemText(1), u"Riverside Studio");
    EXPECT_EQ(popup->GetValue(), 0);
    EXPECT_EQ(tree.user->GetProposedAccount(), tree.northlight);
    EXPECT_NE(popup->GetImageSupplyFunction(), nullptr);
}

TEST_F(ProjectPickerViewTest, ProposedAccountIsTheChosenItem) {
    tree.user->SetProposedAccount(tree.studio);
    const auto picker = MakePicker();
    EXPECT_EQ(picker->GetAccountSelector()->GetValue(), 1);
    EXPECT_EQ(tree.user->GetProposedAccount(), tree.studio);
}

TEST_F(ProjectPickerViewTest, UserWithOneAccountShowsOneItemAlreadySelected) {
    tree.user->SetAccounts({tree.studio});
    const auto picker = MakePicker();
    const auto& popup = picker->GetAccountSelector();
    ASSERT_EQ(popup->GetItemCount(), 1);
    EXPECT_EQ(popup->GetItemText(0), u"Riverside Studio");
    EXPECT_EQ(popup->GetValue(), 0);
    EXPECT_EQ(tree.user->GetProposedAccount(), tree.studio);
}

TEST_F(ProjectPickerViewTest, EmptyAccountListLeavesPopupEmptyAndProposalNull) {
    tree.user->SetAccounts({});
    const auto picker = MakePicker();
    EXPECT_EQ(picker->GetAccountSelector()->GetItemCount(), 0);
    EXPECT_EQ(picker->GetAccountSelector()->GetValue(), -1);
    EXPECT_EQ(tree.user->GetProposedAccount(), nullptr);
    EXPECT_TRUE(picker->GetSections().empty());
}

TEST_F(ProjectPickerViewTest, SameAccountsArrivingAgainKeepTheSelectedItemByID) {
    tree.user->SetProposedAccount(tree.studio);
    const auto picker = MakePicker();
    ASSERT_EQ(picker->GetAccountSelector()->GetValue(), 1);
    // New objects for the same accounts, as a re-fetch gives: the choice follows the id.
    auto studioAgain = std::make_shared<VantroAccount>(tree.user);
    studioAgain->SetID(tree.studio->GetID());
    studioAgain->SetName(u"Riverside Studio");
    auto northlightAgain = std::make_shared<VantroAccount>(tree.user);
    northlightAgain->SetID(tree.northlight->GetID());
    northlightAgain->SetName(u"Northlight Post");
    tree.user->SetAccounts({studioAgain, northlightAgain});
    Pump();
    EXPECT_EQ(picker->GetAccountSelector()->GetItemCount(), 2);
    EXPECT_EQ(picker->GetAccountSelector()->GetValue(), 1);
    EXPECT_EQ(tree.user->GetProposedAccount(), tree.studio);
}

TEST_F(ProjectPickerViewTest, PickingAnItemProposesThatAccount) {
    const auto picker = MakePicker();
    const auto& popup = picker->GetAccountSelector();
    ASSERT_EQ(tree.user->GetProposedAccount(), tree.northlight);
    popup->ShowMenu();
    ASSERT_TRUE(popup->IsMenuShowing());
    QMenu* menu = popup->GetMenu();
    QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier,
                      menu->actionGeometry(menu->actions().at(1)).center());
    PumpUntil([&] { return !popup->IsMenuShowing(); });
    Pump();
    EXPECT_EQ(popup->GetValue(), 1);
    EXPECT_EQ(tree.user->GetProposedAccount(), tree.studio);
    EXPECT_EQ(SectionTitles(*picker), (std::vector<string>{u"Editors", u"Shared Projects"}));
}

TEST_F(ProjectPickerViewTest, KeyboardPicksAnAccountInThePopup) {
    const auto picker = MakePicker();
    const auto& popup = picker->GetAccountSelector();
    popup->GetWidget()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(popup->GetWidget(), Qt::Key_Space);
    PumpUntil([&] { return popup->IsMenuShowing(); });
    QTest::keyClick(popup->GetMenu(), Qt::Key_Down);
    QTest::keyClick(popup->GetMenu(), Qt::Key_Return);
    PumpUntil([&] { return !popup->IsMenuShowing(); });
    Pump();
    EXPECT_EQ(tree.user->GetProposedAccount(), tree.studio);
}

// Sections ---------------------------------------------------------------------------------

TEST_F(ProjectPickerViewTest, SectionsAreTheProposedAccountsWorkspacesInOrder) {
    tree.user->SetProposedAccount(tree.studio);
    const auto picker = MakePicker();
    EXPECT_EQ(SectionTitles(*picker), (std::vector<string>{u"Editors", u"Shared Projects"}));
    EXPECT_EQ(RowNames(*picker), (std::vector<string>{u"Autumn Promo", u"Documentary",
                                                      u"Spring Campaign", u"Client Teaser"}));
    // The family is asked for by name; the toolkit falls back where it is not installed.
    EXPECT_EQ(picker->GetSections().front()->GetTitleText()->GetFontName(), "Tessaly Clean");
}

TEST_F(ProjectPickerViewTest, ChangingAccountReplacesTheSectionsAndDropsTheOldSubscription) {
    tree.user->SetProposedAccount(tree.studio);
    const auto picker = MakePicker();
    tree.user->SetProposedAccount(tree.northlight);
    Pump();
    EXPECT_EQ(SectionTitles(*picker), std::vector<string>{u"Colour"});
    // The old account's list no longer reaches the picker.
    tree.studio->SetWorkspaces({tree.editors});
    Pump();
    EXPECT_EQ(SectionTitles(*picker), std::vector<string>{u"Colour"});
    tree.user->SetProposedAccount(nullptr);
    Pump();
    EXPECT_TRUE(picker->GetSections().empty());
    EXPECT_EQ(picker->GetScrollView()->GetContentView()->UI_GetLocalRectF(),
              (RectT<float>{0.0f, 0.0f, 310.0f, 0.0f}));
}

TEST_F(ProjectPickerViewTest, NewProjectsListRebuildsTheRowsAndTheLayout) {
    tree.user->SetProposedAccount(tree.studio);
    const auto picker = MakePicker();
    const auto extra = LocalProject::Make(tree.shared, u"Behind the Scenes");
    tree.shared->SetProjects({tree.teaser.project, extra.project});
    Pump();
    const auto& shared = picker->GetSections().at(1);
    ASSERT_EQ(shared->GetItems().size(), 2u);
    EXPECT_EQ(shared->GetItems()[0]->GetNameText()->GetText(), u"Behind the Scenes");
    const float th = sharedui::GetRecommendedSize(shared->GetTitleText()).y;
    EXPECT_EQ(shared->GetItems()[1]->UI_GetLocalRectF(),
              (RectT<float>{15.0f, th + 5.0f + 25.0f, 295.0f, 20.0f}));
    EXPECT_EQ(shared->UI_GetLocalRectF().height, th + 5.0f + 50.0f);
}

// Layout -----------------------------------------------------------------------------------

TEST_F(ProjectPickerViewTest, LayoutFollowsTheMeasuredSizes) {
    tree.user->SetProposedAccount(tree.studio);
    const auto picker = MakePicker();
    const RectT<float> rect = picker->UI_GetLocalRectF();
    ASSERT_EQ(rect, (RectT<float>{0.0f, kPickerTop, 340.0f, 315.0f}));
    const float right = rect.x + rect.width - 15.0f;
    const float lw = sharedui::GetRecommendedSize(picker->GetAccountsLabel()).x;
    const float sh = sharedui::GetRecommendedSize(picker->GetAccountSelector()).y;
    const PointT<float> p = sharedui::GetRecommendedSize(picker->GetProjectsLabel());
    EXPECT_EQ(picker->GetAccountsLabel()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 15.0f, lw, sh - 1.0f}));
    EXPECT_EQ(picker->GetAccountSelector()->UI_GetLocalRectF(),
              (RectT<float>{15.0f + lw + 4.0f, 15.0f, right - (15.0f + lw + 4.0f), sh}));
    EXPECT_EQ(picker->GetProjectsLabel()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, sh + 30.0f, p.x, p.y}));
    EXPECT_EQ(picker->GetScrollView()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, sh + 36.0f + p.y, right,
                            rect.y + rect.height - (sh + 36.0f + p.y)}));

    float sy = 0.0f;
    for (const auto& section : picker->GetSections()) {
        const float height = sharedui::GetRecommendedSize(section).y;
        EXPECT_EQ(section->UI_GetLocalRectF(), (RectT<float>{0.0f, sy, 310.0f, height}));
        const float th = sharedui::GetRecommendedSize(section->GetTitleText()).y;
        EXPECT_EQ(height, th + 5.0f + 25.0f * static_cast<float>(section->GetItems().size()));
        sy += height + 3.0f;
    }
    EXPECT_EQ(picker->GetScrollView()->GetContentView()->UI_GetLocalRectF(),
              (RectT<float>{0.0f, 0.0f, 310.0f, sy - 3.0f}));
    EXPECT_EQ(picker->GetAccountsLabel()->GetText(), u"Accounts");
    EXPECT_EQ(picker->GetProjectsLabel()->GetText(), u"Projects");
}

// Keyboard ---------------------------------------------------------------------------------

TEST_F(ProjectPickerViewTest, ArrowKeysWalkTheRowsAcrossSections) {
    tree.user->SetProposedAccount(tree.studio);
    const auto picker = MakePicker();
    const auto rows = picker->GetRows();
    ASSERT_EQ(rows.size(), 4u);
    rows[0]->GetWidget()->setFocus(Qt::TabFocusReason);
    PumpUntil([&] { return rows[0]->GetWidget()->hasFocus(); });
    for (std::size_t i = 1; i < rows.size(); ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
        EXPECT_TRUE(rows[i]->GetWidget()->hasFocus()) << "row " << i;
    }
    // At the end the keyboard stays on the last row.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_TRUE(rows.back()->GetWidget()->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
    EXPECT_TRUE(rows[2]->GetWidget()->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(tree.user->GetProposedSelection(), tree.spring.root);
    EXPECT_EQ(View(), ViewID::SelectFolder);
}

TEST_F(ProjectPickerViewTest, TabGoesFromTheAccountPopupThroughEveryRow) {
    tree.user->SetProposedAccount(tree.studio);
    const auto picker = MakePicker();
    const auto rows = picker->GetRows();
    picker->GetAccountSelector()->GetWidget()->setFocus(Qt::TabFocusReason);
    PumpUntil([&] { return picker->GetAccountSelector()->GetWidget()->hasFocus(); });
    // The scroll view itself may take the keyboard on the way (for PageUp/PageDown).
    std::vector<QWidget*> reached;
    for (int i = 0; i < 8; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached.push_back(QApplication::focusWidget());
    }
    std::vector<QWidget*> rowsReached;
    for (QWidget* widget : reached) {
        for (const auto& row : rows) {
            if (row->GetWidget() == widget) {
                rowsReached.push_back(widget);
            }
        }
    }
    ASSERT_GE(rowsReached.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rowsReached[i], rows[i]->GetWidget()) << "row " << i;
    }
}

}  // namespace
}  // namespace vantrokelui::view::testing
