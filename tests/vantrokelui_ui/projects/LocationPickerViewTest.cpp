// The location picker's shell: header, buttons and their first state, which step shows, the
// layout, and what Cancel and Choose do to the proposal, the selection and the panel.
#include <algorithm>

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/nodes/NodeFunctions.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/view/LocationPickerView.h>

#include "LocationPickerFixture.h"

namespace vantrokelui::view::testing {
namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

class LocationPickerViewTest : public LocationPickerFixture {
protected:
    boost::intrusive_ptr<LocationPickerView> MakeView() {
        return Place(boost::intrusive_ptr<LocationPickerView>(new LocationPickerView(viewModel)),
                     340.0f, 392.0f);
    }

    /// The user has committed `folder` earlier, and the picker opened with it proposed.
    void Commit(const std::shared_ptr<VantroFolder>& folder) {
        tree.user->SetSelection(folder);
        tree.user->SetProposedAccount(GetAccount(folder));
        tree.user->SetProposedSelection(folder);
        Pump();
    }

    void Click(const boost::intrusive_ptr<kelui::ui::UI_Node>& node) {
        QTest::mouseClick(node->GetWidget(), Qt::LeftButton, Qt::NoModifier,
                          node->GetWidget()->rect().center());
        Pump();
    }
};

TEST_F(LocationPickerViewTest, RecommendsThreeFortyByThreeNinetyTwo) {
    const auto view = MakeView();
    EXPECT_EQ(sharedui::GetRecommendedSize(view), (PointT<float>{340.0f, 392.0f}));
}

TEST_F(LocationPickerViewTest, HeaderOnTheProjectStep) {
    const auto view = MakeView();
    EXPECT_EQ(view->GetHeaderText()->GetText(), u"Select an account and project on Vantro");
    EXPECT_EQ(view->GetHeaderText()->GetFontStyleName(), "Bold");
}

TEST_F(LocationPickerViewTest, HeaderOnTheFolderStepIsChosenOnceAtConstruction) {
    viewModel->SetCurrentViewID(ViewID::SelectFolder);
    const auto view = MakeView();
    EXPECT_EQ(view->GetHeaderText()->GetText(), u"Select a folder in the project");
    viewModel->SetCurrentViewID(ViewID::SelectProject);
    Pump();
    EXPECT_EQ(view->GetHeaderText()->GetText(), u"Select a folder in the project");
}

TEST_F(LocationPickerViewTest, ButtonsHaveTheirIDsTextsAndFirstState) {
    const auto view = MakeView();
    EXPECT_EQ(view->UI_ChildGetFromID("LocationPickerCancel"), view->GetCancelButton());
    EXPECT_EQ(view->UI_ChildGetFromID("LocationPickerCommit"), view->GetChooseButton());
    EXPECT_EQ(view->GetCancelButton()->GetText(), u"Cancel");
    EXPECT_EQ(view->GetChooseButton()->GetText(), u"Choose");
    EXPECT_EQ(view->GetCancelButton()->GetFontStyleName(), "Bold");
    EXPECT_EQ(view->GetChooseButton()->GetFontStyleName(), "Bold");
    EXPECT_TRUE(view->GetCancelButton()->UI_IsEnabled());
    EXPECT_FALSE(view->GetChooseButton()->UI_IsEnabled());
}

TEST_F(LocationPickerViewTest, StepShownFollowsCurrentViewID) {
    const auto view = MakeView();
    EXPECT_TRUE(view->GetProjectPicker()->UI_IsShown());
    ASSERT_NE(view->GetFolderPicker(), nullptr);
    EXPECT_FALSE(view->GetFolderPicker()->UI_IsShown());
    viewModel->SetCurrentViewID(ViewID::SelectFolder);
    Pump();
    EXPECT_FALSE(view->GetProjectPicker()->UI_IsShown());
    EXPECT_TRUE(view->GetFolderPicker()->UI_IsShown());
    viewModel->SetCurrentViewID(ViewID::ReviewInVantro);
    Pump();
    EXPECT_FALSE(view->GetProjectPicker()->UI_IsShown());
    EXPECT_FALSE(view->GetFolderPicker()->UI_IsShown());
}

TEST_F(LocationPickerViewTest, LayoutFollowsTheMeasuredButtons) {
    const auto view = MakeView();
    const float cw = sharedui::GetRecommendedSize(view->GetCancelButton()).x;
    const float hw = sharedui::GetRecommendedSize(view->GetChooseButton()).x;
    const PointT<float> p = sharedui::GetRecommendedSize(view->GetProjectPicker());
    const PointT<float> f = sharedui::GetRecommendedSize(view->GetFolderPicker());
    EXPECT_EQ(view->GetHeaderText()->UI_GetLocalRectF(), (RectT<float>{15.0f, 6.0f, 310.0f, 15.0f}));
    EXPECT_EQ(view->GetTopDivider()->UI_GetLocalRectF(), (RectT<float>{0.0f, 27.0f, 340.0f, 1.0f}));
    EXPECT_EQ(view->GetProjectPicker()->UI_GetLocalRectF(), (RectT<float>{0.0f, 27.0f, p.x, p.y}));
    EXPECT_EQ(view->GetFolderPicker()->UI_GetLocalRectF(), (RectT<float>{0.0f, 27.0f, f.x, f.y}));
    EXPECT_EQ(view->GetBottomDivider()->UI_GetLocalRectF(),
              (RectT<float>{0.0f, 342.0f, 340.0f, 1.0f}));
    EXPECT_EQ(view->GetCancelButton()->UI_GetLocalRectF(),
              (RectT<float>{340.0f - cw - 10.0f - hw - 15.0f, 357.0f, cw, 20.0f}));
    EXPECT_EQ(view->GetChooseButton()->UI_GetLocalRectF(),
              (RectT<float>{340.0f - 15.0f - hw, 357.0f, hw, 20.0f}));
}

TEST_F(LocationPickerViewTest, ChooseIsEnabledExactlyWhileTheProposalHoldsAFolder) {
    const auto view = MakeView();
    tree.user->SetProposedSelection(tree.spring.folder);
    Pump();
    EXPECT_TRUE(view->GetChooseButton()->UI_IsEnabled());
    tree.user->SetProposedSelection(nullptr);
    Pump();
    EXPECT_FALSE(view->GetChooseButton()->UI_IsEnabled());
}

TEST_F(LocationPickerViewTest, ChooseIsDisabledAgainWhenAChangeOfAccountClearsTheProposal) {
    tree.user->SetProposedAccount(tree.studio);
    const auto view = MakeView();
    tree.user->SetProposedSelection(tree.spring.folder);
    Pump();
    ASSERT_TRUE(view->GetChooseButton()->UI_IsEnabled());
    tree.user->SetProposedAccount(tree.northlight);
    Pump();
    EXPECT_EQ(tree.user->GetProposedSelection(), nullptr);
    EXPECT_FALSE(view->GetChooseButton()->UI_IsEnabled());
}

TEST_F(LocationPickerViewTest, CancelAfterMovingToAnotherAccountRestoresAccountAndFolder) {
    Commit(tree.teaser.folder);
    const auto view = MakeView();
    tree.user->SetProposedAccount(tree.northlight);
    tree.user->SetProposedSelection(tree.feature.root);
    Pump();
    Click(view->GetCancelButton());
    // The committed folder and its account come back. The account is set last, and as it
    // really changes its setter clears the proposed folder: the folder step then falls back to
    // the committed one, and no trace of the edit stays.
    EXPECT_EQ(tree.user->GetSelection(), tree.teaser.folder);
    EXPECT_EQ(tree.user->GetProposedAccount(), tree.studio);
    EXPECT_EQ(tree.user->GetProposedSelection(), nullptr);
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
}

TEST_F(LocationPickerViewTest, CancelWithinTheCommittedAccountKeepsTheCommittedFolderProposed) {
    Commit(tree.teaser.folder);
    const auto view = MakeView();
    tree.user->SetProposedSelection(tree.spring.folder);
    Pump();
    Click(view->GetCancelButton());
    EXPECT_EQ(tree.user->GetSelection(), tree.teaser.folder);
    EXPECT_EQ(tree.user->GetProposedSelection(), tree.teaser.folder);
    EXPECT_EQ(tree.user->GetProposedAccount(), tree.studio);
}

TEST_F(LocationPickerViewTest, CancelWithNothingCommittedLeavesBothProposalsNull) {
    const auto view = MakeView();
    ASSERT_EQ(tree.user->GetProposedAccount(), tree.northlight);  // the popup's default
    tree.user->SetProposedSelection(tree.feature.folder);
    Pump();
    Click(view->GetCancelButton());
    EXPECT_EQ(tree.user->GetProposedSelection(), nullptr);
    EXPECT_EQ(tree.user->GetProposedAccount(), nullptr);
    EXPECT_EQ(tree.user->GetSelection(), nullptr);
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
}

TEST_F(LocationPickerViewTest, ChooseCommitsTheProposalAndWritesTheSequence) {
    Commit(tree.teaser.folder);
    const auto view = MakeView();
    tree.user->SetProposedAccount(tree.northlight);
    tree.user->SetProposedSelection(tree.feature.folder);
    Pump();
    ASSERT_TRUE(view->GetChooseButton()->UI_IsEnabled());
    Click(view->GetChooseButton());
    EXPECT_EQ(tree.user->GetSelection(), tree.feature.folder);
    EXPECT_EQ(tree.user->GetProposedSelection(), tree.feature.folder);
    EXPECT_EQ(tree.user->GetProposedAccount(), tree.northlight);
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
    EXPECT_EQ(host->Find(guids, model::kUploadFolderGuidKey),
              tree.feature.folder->GetID().AsString());
}

TEST_F(LocationPickerViewTest, ClickingAProjectMovesToTheFolderStepWithItsRootProposed) {
    tree.user->SetProposedAccount(tree.studio);
    const auto view = MakeView();
    const auto rows = view->GetProjectPicker()->GetRows();
    ASSERT_EQ(rows.size(), 4u);
    Click(rows[3]);
    EXPECT_EQ(tree.user->GetProposedSelection(), tree.teaser.root);
    EXPECT_EQ(View(), ViewID::SelectFolder);
    EXPECT_TRUE(view->GetFolderPicker()->UI_IsShown());
    EXPECT_FALSE(view->GetProjectPicker()->UI_IsShown());
    EXPECT_TRUE(view->GetChooseButton()->UI_IsEnabled());
}

TEST_F(LocationPickerViewTest, TabReachesPopupRowsAndBothButtons) {
    tree.user->SetProposedAccount(tree.studio);
    const auto view = MakeView();
    std::vector<QWidget*> wanted{view->GetProjectPicker()->GetAccountSelector()->GetWidget()};
    for (const auto& row : view->GetProjectPicker()->GetRows()) {
        wanted.push_back(row->GetWidget());
    }
    wanted.push_back(view->GetCancelButton()->GetWidget());
    wanted.push_back(view->GetChooseButton()->GetWidget());
    // Choose takes the keyboard only when enabled.
    tree.user->SetProposedSelection(tree.spring.folder);
    Pump();

    wanted.front()->setFocus(Qt::TabFocusReason);
    PumpUntil([&] { return wanted.front()->hasFocus(); });
    std::vector<QWidget*> reached{QApplication::focusWidget()};
    for (int i = 0; i < 12; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached.push_back(QApplication::focusWidget());
    }
    // Every wanted widget is reached, in this order (others, such as the scroll view, between).
    auto at = reached.begin();
    for (QWidget* widget : wanted) {
        at = std::find(at, reached.end(), widget);
        ASSERT_NE(at, reached.end()) << widget->metaObject()->className();
    }
}

}  // namespace
}  // namespace vantrokelui::view::testing
