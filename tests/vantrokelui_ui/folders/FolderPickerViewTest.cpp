// The folder step: how its tree follows the cloud folders, what it proposes, and its keys.

#include <QTest>

#include <gtest/gtest.h>

#include "FolderPickerFixture.h"

namespace vantrokelui::view::testing {
namespace {

using FolderPickerView_ = FolderPickerFixture;

TEST_F(FolderPickerView_, EmptyProjectShowsOnlyTheRootRow) {
    user->SetProposedSelection(root);
    Fill(root, {});
    ShowPicker();

    EXPECT_EQ(picker->GetTree()->GetRowCount(), 1u);
    ASSERT_NE(picker->GetRootRow(), nullptr);
    EXPECT_EQ(picker->GetFolderForRow(picker->GetRootRow()), root);
    EXPECT_TRUE(picker->GetRootRow()->GetChildRows().empty());
}

TEST_F(FolderPickerView_, ReopeningWithADeepFolderExpandsThePathSelectsAndScrollsToIt) {
    // Enough siblings at each level that the deep folder lies far below the first screen.
    std::vector<std::shared_ptr<CountingFolder>> top;
    for (int i = 0; i < 20; ++i) {
        top.push_back(MakeFolder(root, u"Shot " + kelcore::string::string(1, char16_t(u'A' + i))));
    }
    Fill(root, top);
    const auto middle = top.back();
    std::vector<std::shared_ptr<CountingFolder>> second;
    for (int i = 0; i < 10; ++i) {
        second.push_back(
            MakeFolder(middle, u"Take " + kelcore::string::string(1, char16_t(u'a' + i))));
    }
    Fill(middle, second);
    const auto deep = second.back();
    Fill(deep, {});
    user->SetSelection(deep);
    user->SetProposedSelection(nullptr);

    ShowPicker();

    UI_TreeRow* deepRow = picker->GetRowForFolder(deep.get());
    ASSERT_NE(deepRow, nullptr);
    EXPECT_TRUE(picker->GetRootRow()->IsOpen());
    EXPECT_TRUE(picker->GetRowForFolder(middle.get())->IsOpen());
    EXPECT_EQ(picker->GetTree()->GetSelectedRows(), std::vector<UI_TreeRow*>{deepRow});
    PumpUntil([&] {
        const auto visible = picker->GetTree()->GetVisibleRows();
        return std::find(visible.begin(), visible.end(), deepRow) != visible.end();
    });
    const auto visible = picker->GetTree()->GetVisibleRows();
    EXPECT_EQ(std::find(visible.begin(), visible.end(), picker->GetRootRow()), visible.end())
        << "the tree scrolled down to the deep row";
    EXPECT_EQ(user->GetProposedSelection(), deep);
}

TEST_F(FolderPickerView_, ProposedSelectionWinsOverTheCommittedOne) {
    const auto cuts = MakeFolder(root, u"Cuts");
    const auto grade = MakeFolder(root, u"Grade");
    Fill(root, {cuts, grade});
    user->SetSelection(cuts);
    user->SetProposedSelection(grade);

    ShowPicker();

    EXPECT_EQ(picker->GetTree()->GetSelectedRows(),
              std::vector<UI_TreeRow*>{picker->GetRowForFolder(grade.get())});
}

TEST_F(FolderPickerView_, AFolderReplacedByARefetchIsFoundAgainByID) {
    const auto cuts = MakeFolder(root, u"Cuts");
    Fill(root, {cuts});
    user->SetSelection(cuts);
    // The same folder as a new object, as a later fetch delivers it.
    const auto again = MakeFolder(root, u"Cuts");
    again->SetID(cuts->GetID());
    Fill(root, {again});

    ShowPicker();

    EXPECT_EQ(picker->GetTree()->GetSelectedRows(),
              std::vector<UI_TreeRow*>{picker->GetRowForFolder(again.get())});
}

TEST_F(FolderPickerView_, NoCurrentFolderLeavesTheTreeEmpty) {
    Fill(root, {MakeFolder(root, u"Cuts")});

    ShowPicker();

    EXPECT_EQ(picker->GetTree()->GetRowCount(), 0u);
    EXPECT_FALSE(picker->GetHeader()->GetProjectText()->UI_IsViewVisible());
}

TEST_F(FolderPickerView_, ShowingAsksForTheRootsChildrenOnce) {
    user->SetProposedSelection(root);

    ShowPicker();
    EXPECT_EQ(root->fetches, 1);
    EXPECT_EQ(picker->GetTree()->GetRowCount(), 1u);

    const auto cuts = MakeFolder(root, u"Cuts");
    const auto grade = MakeFolder(root, u"Grade");
    Fill(root, {grade, cuts});
    Pump();

    EXPECT_EQ(ChildNames(picker->GetRootRow()), (std::vector<string>{u"Cuts", u"Grade"}));
    picker->UI_Show(false);
    picker->UI_Show(true);
    Pump();
    EXPECT_EQ(root->fetches, 1);
}

TEST_F(FolderPickerView_, OpeningARowFetchesItsChildrensChildren) {
    const auto cuts = MakeFolder(root, u"Cuts");
    const auto grade = MakeFolder(root, u"Grade");
    Fill(root, {cuts, grade});
    user->SetProposedSelection(root);
    ShowPicker();
    EXPECT_EQ(cuts->fetches, 0);

    picker->GetTree()->OpenRow(picker->GetRootRow());
    Pump();

    EXPECT_EQ(cuts->fetches, 1);
    EXPECT_EQ(grade->fetches, 1);
    // Their children arrive: the rows get them, so the disclosure state is known.
    Fill(cuts, {MakeFolder(cuts, u"Day 1")});
    Pump();
    EXPECT_EQ(ChildNames(picker->GetRowForFolder(cuts.get())), std::vector<string>{u"Day 1"});

    // Closing and reopening asks nothing again.
    picker->GetTree()->CloseRow(picker->GetRootRow());
    picker->GetTree()->OpenRow(picker->GetRootRow());
    Pump();
    EXPECT_EQ(cuts->fetches, 1);
    EXPECT_EQ(grade->fetches, 1);
}

TEST_F(FolderPickerView_, AFolderOf250FillsAsItsPagesArrive) {
    user->SetProposedSelection(root);
    ShowPicker();
    std::vector<std::shared_ptr<CountingFolder>> all;
    for (int i = 0; i < 250; ++i) {
        all.push_back(
            MakeFolder(root, u"Folder " + kelcore::string::StdToUTF16String(std::to_string(i))));
    }
    std::vector<std::shared_ptr<CountingFolder>> page(all.begin(), all.begin() + 100);
    Fill(root, page);
    Pump();
    ASSERT_EQ(picker->GetRootRow()->GetChildRows().size(), 100u);
    UI_TreeRow* firstRow = picker->GetRowForFolder(all.front().get());

    page.assign(all.begin(), all.begin() + 200);
    Fill(root, page);
    Pump();
    EXPECT_EQ(picker->GetRootRow()->GetChildRows().size(), 200u);
    EXPECT_EQ(picker->GetRowForFolder(all.front().get()), firstRow) << "kept rows stay";

    Fill(root, all);
    Pump();
    EXPECT_EQ(picker->GetRootRow()->GetChildRows().size(), 250u);
    EXPECT_EQ(picker->GetTree()->GetRowCount(), 251u);
    // The rows stand in the list's (natural, by name) order.
    std::vector<string> expected;
    for (const auto& folder : root->GetFolders()) {
        expected.push_back(folder->GetName());
    }
    EXPECT_EQ(ChildNames(picker->GetRootRow()), expected);
    EXPECT_EQ(expected[2], u"Folder 2");
}

TEST_F(FolderPickerView_, ARemovedSelectedFolderLosesItsRowButStaysProposed) {
    const auto cuts = MakeFolder(root, u"Cuts");
    const auto grade = MakeFolder(root, u"Grade");
    Fill(root, {cuts, grade});
    Fill(cuts, {MakeFolder(cuts, u"Day 1")});
    user->SetProposedSelection(cuts);
    ShowPicker();
    ASSERT_NE(picker->GetRowForFolder(cuts.get()), nullptr);
    // A later change of the root's list shows only while it is bound: bind it as the server
    // view would, by a fresh fetch.
    root->SetFetchChildrenState(FetchChildrenState::NotFetched);
    picker->UI_Show(false);
    picker->UI_Show(true);
    Pump();

    Fill(root, {grade});
    Pump();

    EXPECT_EQ(picker->GetRowForFolder(cuts.get()), nullptr);
    EXPECT_EQ(ChildNames(picker->GetRootRow()), std::vector<string>{u"Grade"});
    EXPECT_EQ(picker->GetTree()->GetRowCount(), 2u) << "the removed branch went with it";
    EXPECT_EQ(user->GetProposedSelection(), cuts);

    picker->GetTree()->SelectRow(picker->GetRowForFolder(grade.get()));
    EXPECT_EQ(user->GetProposedSelection(), grade);
}

TEST_F(FolderPickerView_, AKeptRowKeepsItsOpeningAndSelectionWhenItsListComesAgain) {
    root->SetFetchChildrenState(FetchChildrenState::NotFetched);
    user->SetProposedSelection(root);
    ShowPicker();
    const auto cuts = MakeFolder(root, u"Cuts");
    Fill(root, {cuts});
    Pump();
    picker->GetTree()->OpenRow(picker->GetRootRow());
    Fill(cuts, {MakeFolder(cuts, u"Day 1")});
    Pump();
    UI_TreeRow* cutsRow = picker->GetRowForFolder(cuts.get());
    picker->GetTree()->OpenRow(cutsRow);
    picker->GetTree()->SelectRow(cutsRow);

    Fill(root, {cuts, MakeFolder(root, u"Audio")});
    Pump();

    EXPECT_EQ(picker->GetRowForFolder(cuts.get()), cutsRow);
    EXPECT_TRUE(cutsRow->IsOpen());
    EXPECT_EQ(picker->GetTree()->GetSelectedRows(), std::vector<UI_TreeRow*>{cutsRow});
    EXPECT_EQ(ChildNames(picker->GetRootRow()), (std::vector<string>{u"Audio", u"Cuts"}));
}

TEST_F(FolderPickerView_, AnEmptyListDeliveryChangesNothing) {
    root->SetFetchChildrenState(FetchChildrenState::NotFetched);
    user->SetProposedSelection(root);
    ShowPicker();
    Fill(root, {MakeFolder(root, u"Cuts")});
    Pump();
    ASSERT_EQ(picker->GetTree()->GetRowCount(), 2u);

    Fill(root, {});
    Pump();

    EXPECT_EQ(picker->GetTree()->GetRowCount(), 2u);
}

TEST_F(FolderPickerView_, ChoosingOneRowProposesItsFolder) {
    const auto cuts = MakeFolder(root, u"Cuts");
    Fill(root, {cuts});
    user->SetProposedSelection(root);
    ShowPicker();

    picker->GetTree()->OpenRow(picker->GetRootRow());
    const RectT<float> rect = picker->GetTree()->GetRowRect(picker->GetRowForFolder(cuts.get()));
    ASSERT_FALSE(rect.IsEmpty());
    QWidget* viewport = picker->GetTree()->GetWidget()->findChild<QWidget*>(
        QStringLiteral("qt_scrollarea_viewport"));
    ASSERT_NE(viewport, nullptr);
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier,
                      QPoint(int(rect.x + 20.0f), int(rect.y + rect.height / 2.0f)));
    Pump();

    EXPECT_EQ(user->GetProposedSelection(), cuts);
}

TEST_F(FolderPickerView_, ANoneSelectionLeavesTheProposal) {
    const auto cuts = MakeFolder(root, u"Cuts");
    Fill(root, {cuts});
    user->SetProposedSelection(cuts);
    ShowPicker();
    ASSERT_EQ(picker->GetTree()->GetSelectedRows().size(), 1u);

    picker->GetTree()->SelectRow(nullptr);

    EXPECT_TRUE(picker->GetTree()->GetSelectedRows().empty());
    EXPECT_EQ(user->GetProposedSelection(), cuts);
}

TEST_F(FolderPickerView_, ControlClickingASecondRowNeverLeavesTwoSelected) {
    const auto cuts = MakeFolder(root, u"Cuts");
    const auto grade = MakeFolder(root, u"Grade");
    Fill(root, {cuts, grade});
    user->SetProposedSelection(cuts);
    ShowPicker();

    const RectT<float> rect = picker->GetTree()->GetRowRect(picker->GetRowForFolder(grade.get()));
    QWidget* viewport = picker->GetTree()->GetWidget()->findChild<QWidget*>(
        QStringLiteral("qt_scrollarea_viewport"));
    ASSERT_NE(viewport, nullptr);
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::ControlModifier,
                      QPoint(int(rect.x + 20.0f), int(rect.y + rect.height / 2.0f)));
    Pump();

    const auto selected = picker->GetTree()->GetSelectedRows();
    EXPECT_LE(selected.size(), 1u);
    if (selected.size() == 1u) {
        EXPECT_EQ(user->GetProposedSelection(), picker->GetFolderForRow(selected.front()));
    } else {
        EXPECT_EQ(user->GetProposedSelection(), cuts);
    }
}

TEST_F(FolderPickerView_, ArrowKeysMoveOpenAndCloseAndEnterChooses) {
    const auto cuts = MakeFolder(root, u"Cuts");
    const auto grade = MakeFolder(root, u"Grade");
    Fill(root, {cuts, grade});
    user->SetProposedSelection(root);
    ShowPicker();
    int chosen = 0;
    picker->SetChooseFunction([&chosen] { ++chosen; });
    QWidget* treeWidget = picker->GetTree()->GetWidget();
    treeWidget->setFocus();
    ASSERT_EQ(treeWidget->focusPolicy() & Qt::TabFocus, Qt::TabFocus);

    QTest::keyClick(treeWidget, Qt::Key_Right);
    Pump();
    EXPECT_TRUE(picker->GetRootRow()->IsOpen());
    EXPECT_EQ(cuts->fetches, 1) << "opening by key looks one level ahead as well";

    QTest::keyClick(treeWidget, Qt::Key_Down);
    Pump();
    EXPECT_EQ(user->GetProposedSelection(), cuts);
    QTest::keyClick(treeWidget, Qt::Key_Down);
    Pump();
    EXPECT_EQ(user->GetProposedSelection(), grade);

    QTest::keyClick(treeWidget, Qt::Key_Return);
    Pump();
    EXPECT_EQ(chosen, 1);

    QTest::keyClick(treeWidget, Qt::Key_Left);  // to the parent
    QTest::keyClick(treeWidget, Qt::Key_Left);  // closes it
    Pump();
    EXPECT_EQ(user->GetProposedSelection(), root);
    EXPECT_FALSE(picker->GetRootRow()->IsOpen());
}

TEST_F(FolderPickerView_, CommitSelectionCommitsAFolderAndIgnoresANullProposal) {
    const auto cuts = MakeFolder(root, u"Cuts");
    Fill(root, {cuts});
    user->SetSelection(root);
    user->SetProposedSelection(nullptr);
    ShowPicker();
    user->SetProposedSelection(nullptr);

    picker->CommitSelection();
    EXPECT_EQ(user->GetSelection(), root);

    user->SetProposedSelection(cuts);
    picker->CommitSelection();
    EXPECT_EQ(user->GetSelection(), cuts);
}

TEST_F(FolderPickerView_, LaysOutHeaderOverTheTree) {
    user->SetProposedSelection(root);
    ShowPicker();

    EXPECT_EQ(sharedui::GetRecommendedSize(picker), (PointT<float>{340.0f, 315.0f}));
    EXPECT_EQ(picker->GetHeader()->UI_GetLocalRectF(), (RectT<float>{0.0f, 0.0f, 340.0f, 50.0f}));
    EXPECT_EQ(picker->GetTree()->UI_GetLocalRectF(), (RectT<float>{0.0f, 50.0f, 340.0f, 267.0f}));
}

}  // namespace
}  // namespace vantrokelui::view::testing
