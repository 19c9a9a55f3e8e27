#include <kelui/controls/UI_MultiColumnTree.h>

#include <memory>
#include <utility>
#include <vector>

#include <QAccessible>
#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include "keluiqt/tree/TreeTestSupport.h"

namespace {

using kelcore::geom::RectT;
using kelui::controls::UI_MultiColumnTree;
using kelui::controls::UI_TreeRow;
using kelui::tests::NodeWindow;
using kelui::tests::ProcessEventsUntil;

// What the tree told its owner, in order.
struct Recorder {
    std::vector<std::vector<UI_TreeRow*>> selections;
    std::vector<std::pair<UI_TreeRow*, bool>> expansions;
    std::vector<UI_TreeRow*> activations;
    int draws = 0;
};

boost::intrusive_ptr<UI_MultiColumnTree> MakeTree(const std::shared_ptr<Recorder>& recorder) {
    return boost::intrusive_ptr<UI_MultiColumnTree>(new UI_MultiColumnTree(
        [recorder](limner::Limner*, UI_TreeRow*, int, RectT<float>) { ++recorder->draws; },
        [recorder](const std::vector<UI_TreeRow*>& rows) { recorder->selections.push_back(rows); },
        [recorder](UI_TreeRow* row, bool opened) {
            recorder->expansions.emplace_back(row, opened);
        }));
}

QTreeView* ViewOf(UI_MultiColumnTree& tree) {
    return qobject_cast<QTreeView*>(tree.GetWidget());
}

// A double click as the platform delivers it: press, release, double click, release.
void DoubleClick(QWidget* widget, QPoint position) {
    QTest::mousePress(widget, Qt::LeftButton, {}, position);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, position);
    QTest::mouseDClick(widget, Qt::LeftButton, {}, position);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, position);
}

QPoint CenterOf(const RectT<float>& rect) {
    return QRectF(rect.x, rect.y, rect.width, rect.height).center().toPoint();
}

// The middle of the disclosure triangle's place, left of the row's content.
QPoint TrianglePointOf(UI_MultiColumnTree& tree, UI_TreeRow* row) {
    const RectT<float> rect = tree.GetRowRect(row);
    const int indentation = ViewOf(tree)->indentation();
    return QPoint(static_cast<int>(rect.x) - indentation / 2, CenterOf(rect).y());
}

class TreeTest : public ::testing::Test {
protected:
    void Show(float width = 300.0f, float height = 200.0f) {
        window = std::make_unique<NodeWindow>(*tree, RectT<float>{0.0f, 0.0f, width, height});
        ASSERT_TRUE(window->IsExposed());
        ViewOf(*tree)->setFocus();
        ASSERT_TRUE(ProcessEventsUntil([this] { return ViewOf(*tree)->hasFocus(); }));
    }
    UI_TreeRow* Row(UI_TreeRow* parent, const char16_t* text) {
        UI_TreeRow* row = tree->CreateAndInsertRow(parent);
        row->SetAccessibleText(text);
        return row;
    }

    std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
    boost::intrusive_ptr<UI_MultiColumnTree> tree = MakeTree(recorder);
    std::unique_ptr<NodeWindow> window;

    void TearDown() override { window.reset(); }
};

TEST_F(TreeTest, CreatesRowsWherePositionSaysAndCountsEveryLevel) {
    UI_TreeRow* second = tree->CreateAndInsertRow(nullptr);
    UI_TreeRow* first = tree->CreateAndInsertRow(nullptr, 0);
    UI_TreeRow* third = tree->CreateAndInsertRow(nullptr, -1);
    UI_TreeRow* child = tree->CreateAndInsertRow(second);
    UI_TreeRow* grandChild = tree->CreateAndInsertRow(child);

    EXPECT_EQ(tree->GetRootRows(), (std::vector<UI_TreeRow*>{first, second, third}));
    EXPECT_EQ(tree->GetRowCount(), 5u);
    EXPECT_EQ(first->GetParentRow(), nullptr);
    EXPECT_EQ(child->GetParentRow(), second);
    EXPECT_EQ(grandChild->GetParentRow(), child);
    EXPECT_EQ(second->GetChildRows(), std::vector<UI_TreeRow*>{child});
    EXPECT_TRUE(third->GetChildRows().empty());
    EXPECT_FALSE(second->IsOpen());
}

TEST_F(TreeTest, RemovingARowRemovesItsChildrenAndLeavesTheOthersInOrder) {
    UI_TreeRow* first = Row(nullptr, u"First");
    UI_TreeRow* second = Row(nullptr, u"Second");
    UI_TreeRow* third = Row(nullptr, u"Third");
    Row(Row(second, u"Child"), u"Grandchild");
    ASSERT_EQ(tree->GetRowCount(), 5u);

    tree->RemoveRow(second);

    EXPECT_EQ(tree->GetRootRows(), (std::vector<UI_TreeRow*>{first, third}));
    EXPECT_EQ(tree->GetRowCount(), 2u);
    EXPECT_EQ(ViewOf(*tree)->model()->rowCount(), 2);
    tree->RemoveRow(nullptr);
    EXPECT_EQ(tree->GetRowCount(), 2u);
}

TEST_F(TreeTest, ClearRemovesEveryRowAndTellsOfTheLostSelection) {
    UI_TreeRow* row = Row(nullptr, u"Only");
    Row(row, u"Child");
    tree->SelectRow(row);
    recorder->selections.clear();

    tree->Clear();

    EXPECT_EQ(tree->GetRowCount(), 0u);
    EXPECT_TRUE(tree->GetRootRows().empty());
    EXPECT_EQ(ViewOf(*tree)->model()->rowCount(), 0);
    ASSERT_EQ(recorder->selections.size(), 1u);
    EXPECT_TRUE(recorder->selections[0].empty());
}

TEST_F(TreeTest, OpenRowCallsTheExpansionFunctionOnceWithTrue) {
    UI_TreeRow* folder = Row(nullptr, u"Folder");
    Row(folder, u"File");
    Show();

    tree->OpenRow(folder);
    tree->OpenRow(folder);

    ASSERT_EQ(recorder->expansions.size(), 1u);
    EXPECT_EQ(recorder->expansions[0], std::make_pair(folder, true));
    EXPECT_TRUE(folder->IsOpen());

    tree->CloseRow(folder);
    ASSERT_EQ(recorder->expansions.size(), 2u);
    EXPECT_EQ(recorder->expansions[1], std::make_pair(folder, false));
    EXPECT_FALSE(folder->IsOpen());
}

TEST_F(TreeTest, OpenRowDoesNothingForARowWithoutChildren) {
    UI_TreeRow* leaf = Row(nullptr, u"Leaf");
    Show();
    tree->OpenRow(leaf);
    EXPECT_TRUE(recorder->expansions.empty());
    EXPECT_FALSE(leaf->IsOpen());
}

TEST_F(TreeTest, ClickingTheDisclosureTriangleOpensAndClosesTheRow) {
    UI_TreeRow* folder = Row(nullptr, u"Folder");
    Row(folder, u"File");
    Show();

    QTest::mouseClick(ViewOf(*tree)->viewport(), Qt::LeftButton, {},
                      TrianglePointOf(*tree, folder));
    ASSERT_EQ(recorder->expansions.size(), 1u);
    EXPECT_EQ(recorder->expansions[0], std::make_pair(folder, true));
    EXPECT_TRUE(folder->IsOpen());

    QTest::mouseClick(ViewOf(*tree)->viewport(), Qt::LeftButton, {},
                      TrianglePointOf(*tree, folder));
    ASSERT_EQ(recorder->expansions.size(), 2u);
    EXPECT_EQ(recorder->expansions[1], std::make_pair(folder, false));
}

TEST_F(TreeTest, ClickingARowSelectsItAndTellsTheSelectionFunctionThatOneRow) {
    Row(nullptr, u"First");
    UI_TreeRow* second = Row(nullptr, u"Second");
    Show();

    QTest::mouseClick(ViewOf(*tree)->viewport(), Qt::LeftButton, {},
                      CenterOf(tree->GetRowRect(second)));

    ASSERT_EQ(recorder->selections.size(), 1u);
    EXPECT_EQ(recorder->selections[0], std::vector<UI_TreeRow*>{second});
    EXPECT_EQ(tree->GetSelectedRows(), std::vector<UI_TreeRow*>{second});
}

TEST_F(TreeTest, SelectRowKeepsOneRowSelectedAndTellsOnlyOfChanges) {
    UI_TreeRow* first = Row(nullptr, u"First");
    UI_TreeRow* second = Row(nullptr, u"Second");

    tree->SelectRow(first);
    tree->SelectRow(second);
    tree->SelectRow(second);

    ASSERT_EQ(recorder->selections.size(), 2u);
    EXPECT_EQ(recorder->selections[0], std::vector<UI_TreeRow*>{first});
    EXPECT_EQ(recorder->selections[1], std::vector<UI_TreeRow*>{second});
    EXPECT_EQ(tree->GetSelectedRows(), std::vector<UI_TreeRow*>{second});

    tree->SelectRow(nullptr);
    EXPECT_TRUE(tree->GetSelectedRows().empty());
    ASSERT_EQ(recorder->selections.size(), 3u);
    EXPECT_TRUE(recorder->selections[2].empty());
}

TEST_F(TreeTest, DownAndUpMoveTheSelection) {
    UI_TreeRow* first = Row(nullptr, u"First");
    UI_TreeRow* second = Row(nullptr, u"Second");
    Show();
    tree->SelectRow(first);
    recorder->selections.clear();

    QTest::keyClick(ViewOf(*tree), Qt::Key_Down);
    ASSERT_EQ(recorder->selections.size(), 1u);
    EXPECT_EQ(recorder->selections[0], std::vector<UI_TreeRow*>{second});

    QTest::keyClick(ViewOf(*tree), Qt::Key_Up);
    EXPECT_EQ(tree->GetSelectedRows(), std::vector<UI_TreeRow*>{first});
}

TEST_F(TreeTest, RightOpensAndLeftClosesThenGoesToTheParent) {
    UI_TreeRow* folder = Row(nullptr, u"Folder");
    UI_TreeRow* file = Row(folder, u"File");
    Show();
    tree->SelectRow(folder);

    QTest::keyClick(ViewOf(*tree), Qt::Key_Right);
    EXPECT_TRUE(folder->IsOpen());
    ASSERT_EQ(recorder->expansions.size(), 1u);
    EXPECT_EQ(recorder->expansions[0], std::make_pair(folder, true));

    QTest::keyClick(ViewOf(*tree), Qt::Key_Down);
    EXPECT_EQ(tree->GetSelectedRows(), std::vector<UI_TreeRow*>{file});

    QTest::keyClick(ViewOf(*tree), Qt::Key_Left);
    EXPECT_EQ(tree->GetSelectedRows(), std::vector<UI_TreeRow*>{folder});
    EXPECT_TRUE(folder->IsOpen());

    QTest::keyClick(ViewOf(*tree), Qt::Key_Left);
    EXPECT_FALSE(folder->IsOpen());
    ASSERT_EQ(recorder->expansions.size(), 2u);
    EXPECT_EQ(recorder->expansions[1], std::make_pair(folder, false));
}

TEST_F(TreeTest, EnterAndReturnActivateTheCurrentRow) {
    Row(nullptr, u"First");
    UI_TreeRow* second = Row(nullptr, u"Second");
    std::vector<UI_TreeRow*> activated;
    tree->SetActivateFunction([&activated](UI_TreeRow* row) { activated.push_back(row); });
    Show();
    tree->SelectRow(second);

    QTest::keyClick(ViewOf(*tree), Qt::Key_Return);
    QTest::keyClick(ViewOf(*tree), Qt::Key_Enter);

    EXPECT_EQ(activated, (std::vector<UI_TreeRow*>{second, second}));
    EXPECT_EQ(tree->GetSelectedRows(), std::vector<UI_TreeRow*>{second});
}

TEST_F(TreeTest, EnterWithoutAnActivateFunctionGoesOnToTheWidgetsAround) {
    UI_TreeRow* row = Row(nullptr, u"Row");
    Show();
    tree->SelectRow(row);

    QKeyEvent unhandled(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(ViewOf(*tree), &unhandled);
    EXPECT_FALSE(unhandled.isAccepted());

    tree->SetActivateFunction([](UI_TreeRow*) {});
    QKeyEvent handled(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(ViewOf(*tree), &handled);
    EXPECT_TRUE(handled.isAccepted());
}

TEST_F(TreeTest, DoubleClickActivatesARowWithoutChildrenAndOpensOneWithChildren) {
    UI_TreeRow* folder = Row(nullptr, u"Folder");
    Row(folder, u"Inside");
    UI_TreeRow* file = Row(nullptr, u"File");
    std::vector<UI_TreeRow*> activated;
    tree->SetActivateFunction([&activated](UI_TreeRow* row) { activated.push_back(row); });
    Show();

    DoubleClick(ViewOf(*tree)->viewport(), CenterOf(tree->GetRowRect(file)));
    EXPECT_EQ(activated, std::vector<UI_TreeRow*>{file});

    DoubleClick(ViewOf(*tree)->viewport(), CenterOf(tree->GetRowRect(folder)));
    EXPECT_EQ(activated, std::vector<UI_TreeRow*>{file});
    EXPECT_TRUE(folder->IsOpen());
    ASSERT_EQ(recorder->expansions.size(), 1u);
    EXPECT_EQ(recorder->expansions[0], std::make_pair(folder, true));
}

// Whether any pixel of the row's indentation differs from the empty background.
bool DrawsSomethingLeftOf(UI_MultiColumnTree& tree, UI_TreeRow* row) {
    QTreeView* view = ViewOf(tree);
    const QImage image = view->viewport()->grab().toImage();
    const RectT<float> rect = tree.GetRowRect(row);
    const QColor background = view->palette().color(QPalette::Base);
    const int top = static_cast<int>(rect.y);
    for (int y = top; y < top + static_cast<int>(rect.height); ++y) {
        for (int x = static_cast<int>(rect.x) - view->indentation(); x < rect.x; ++x) {
            if (image.pixelColor(x, y) != background) {
                return true;
            }
        }
    }
    return false;
}

TEST_F(TreeTest, ShowsADisclosureTriangleExactlyOnRowsWithChildren) {
    UI_TreeRow* folder = Row(nullptr, u"Folder");
    Row(folder, u"File");
    UI_TreeRow* leaf = Row(nullptr, u"Leaf");
    Show();

    EXPECT_TRUE(DrawsSomethingLeftOf(*tree, folder));
    EXPECT_FALSE(DrawsSomethingLeftOf(*tree, leaf));

    // A child that arrives later brings the triangle with it.
    Row(leaf, u"Late child");
    tree->LayoutAfterAppendRow();
    EXPECT_TRUE(DrawsSomethingLeftOf(*tree, leaf));
}

TEST_F(TreeTest, ChildrenAddedUnderAnOpenRowKeepOtherRowsOpenAndSelected) {
    UI_TreeRow* photos = Row(nullptr, u"Photos");
    UI_TreeRow* holiday = Row(photos, u"Holiday");
    UI_TreeRow* videos = Row(nullptr, u"Videos");
    Row(videos, u"Placeholder");
    Show();
    tree->OpenRow(photos);
    tree->OpenRow(videos);
    tree->SelectRow(holiday);
    recorder->selections.clear();

    UI_TreeRow* added = Row(videos, u"Trip");
    UI_TreeRow* inserted = tree->CreateAndInsertRow(photos, 0);
    tree->LayoutAfterAppendRow();

    EXPECT_TRUE(photos->IsOpen());
    EXPECT_TRUE(videos->IsOpen());
    EXPECT_EQ(tree->GetSelectedRows(), std::vector<UI_TreeRow*>{holiday});
    EXPECT_TRUE(recorder->selections.empty());
    EXPECT_EQ(photos->GetChildRows(), (std::vector<UI_TreeRow*>{inserted, holiday}));
    EXPECT_GT(tree->GetRowRect(added).width, 0.0f);
}

TEST_F(TreeTest, ChildrenFetchedWhenARowOpensShowUnderItEvenAfterItsPlaceholderWent) {
    UI_TreeRow* folder = nullptr;
    UI_TreeRow* placeholder = nullptr;
    std::vector<UI_TreeRow*> fetched;
    tree = boost::intrusive_ptr<UI_MultiColumnTree>(
        new UI_MultiColumnTree({}, {}, [&](UI_TreeRow* row, bool opened) {
            if (!opened || row != folder || !placeholder) {
                return;
            }
            // The worst order: the folder has no children for a moment.
            tree->RemoveRow(std::exchange(placeholder, nullptr));
            for (int i = 0; i < 3; ++i) {
                fetched.push_back(tree->CreateAndInsertRow(folder));
            }
        }));
    folder = tree->CreateAndInsertRow(nullptr);
    placeholder = tree->CreateAndInsertRow(folder);
    Show();

    QTest::keyClick(ViewOf(*tree), Qt::Key_Down);
    QTest::keyClick(ViewOf(*tree), Qt::Key_Right);
    QCoreApplication::processEvents();

    ASSERT_EQ(fetched.size(), 3u);
    EXPECT_TRUE(folder->IsOpen());
    EXPECT_EQ(tree->GetVisibleRows(),
              (std::vector<UI_TreeRow*>{folder, fetched[0], fetched[1], fetched[2]}));
}

TEST_F(TreeTest, RemovingARowKeepsOtherRowsOpenAndSelected) {
    UI_TreeRow* first = Row(nullptr, u"First");
    Row(first, u"Inside first");
    UI_TreeRow* second = Row(nullptr, u"Second");
    UI_TreeRow* third = Row(nullptr, u"Third");
    UI_TreeRow* insideThird = Row(third, u"Inside third");
    Show();
    tree->OpenRow(first);
    tree->OpenRow(third);
    tree->SelectRow(insideThird);
    recorder->selections.clear();

    tree->RemoveRow(second);

    EXPECT_TRUE(first->IsOpen());
    EXPECT_TRUE(third->IsOpen());
    EXPECT_EQ(tree->GetSelectedRows(), std::vector<UI_TreeRow*>{insideThird});
    EXPECT_TRUE(recorder->selections.empty());
}

TEST_F(TreeTest, RemovingTheSelectedRowsParentTellsOfAnEmptySelection) {
    UI_TreeRow* folder = Row(nullptr, u"Folder");
    UI_TreeRow* file = Row(folder, u"File");
    UI_TreeRow* other = Row(nullptr, u"Other");
    tree->SelectRow(file);
    recorder->selections.clear();

    tree->RemoveRow(folder);

    ASSERT_EQ(recorder->selections.size(), 1u);
    EXPECT_TRUE(recorder->selections[0].empty());
    EXPECT_TRUE(tree->GetSelectedRows().empty());
    EXPECT_EQ(tree->GetRootRows(), std::vector<UI_TreeRow*>{other});
}

TEST_F(TreeTest, TenThousandAppendedRowsAreAllCountedAndReachTheViewAsOneInsertion) {
    UI_TreeRow* folder = Row(nullptr, u"Folder");
    Row(folder, u"First child");
    Show();
    tree->OpenRow(folder);
    QSignalSpy inserted(ViewOf(*tree)->model(), &QAbstractItemModel::rowsInserted);

    for (int i = 0; i < 10000; ++i) {
        tree->CreateAndInsertRow(folder)->SetHeight(22.0f);
    }
    tree->LayoutAfterAppendRow();

    EXPECT_EQ(tree->GetRowCount(), 10002u);
    EXPECT_EQ(folder->GetChildRows().size(), 10001u);
    EXPECT_EQ(inserted.count(), 1);
    const QModelIndex folderIndex = ViewOf(*tree)->model()->index(0, 0);
    EXPECT_EQ(ViewOf(*tree)->model()->rowCount(folderIndex), 10001);
    EXPECT_TRUE(folder->IsOpen());
}

TEST_F(TreeTest, AppendsReachTheViewOnTheNextEventLoopTurn) {
    Row(nullptr, u"First");
    Row(nullptr, u"Second");
    QAbstractItemModel* model = ViewOf(*tree)->model();
    EXPECT_EQ(model->rowCount(), 0);
    EXPECT_TRUE(ProcessEventsUntil([model] { return model->rowCount() == 2; }));
}

TEST_F(TreeTest, ScrollRowIntoViewPutsTheLastRowAmongTheVisibleRows) {
    std::vector<UI_TreeRow*> rows;
    for (int i = 0; i < 200; ++i) {
        rows.push_back(tree->CreateAndInsertRow(nullptr));
    }
    Show(300.0f, 200.0f);
    const auto visible = [this](UI_TreeRow* row) {
        const auto shown = tree->GetVisibleRows();
        return std::find(shown.begin(), shown.end(), row) != shown.end();
    };
    ASSERT_TRUE(visible(rows.front()));
    ASSERT_FALSE(visible(rows.back()));
    EXPECT_EQ(tree->GetVisibleRows().size(), 10u);

    tree->ScrollRowIntoView(rows.back(), false);
    EXPECT_TRUE(visible(rows.back()));
    EXPECT_FALSE(visible(rows.front()));

    tree->ScrollRowIntoView(rows.front(), true);
    EXPECT_TRUE(ProcessEventsUntil([&] { return visible(rows.front()); }));
}

TEST_F(TreeTest, ScrollRowIntoViewOpensTheRowsAbove) {
    UI_TreeRow* folder = Row(nullptr, u"Folder");
    UI_TreeRow* file = Row(folder, u"File");
    Show();

    tree->ScrollRowIntoView(file, false);

    EXPECT_TRUE(folder->IsOpen());
    const auto shown = tree->GetVisibleRows();
    EXPECT_NE(std::find(shown.begin(), shown.end(), file), shown.end());
}

TEST_F(TreeTest, RowsTakeTheHeightTheyAreGiven) {
    UI_TreeRow* tall = Row(nullptr, u"Tall");
    UI_TreeRow* plain = Row(nullptr, u"Plain");
    tall->SetHeight(36.0f);
    Show();

    EXPECT_FLOAT_EQ(tree->GetRowRect(tall).height, 36.0f);
    EXPECT_FLOAT_EQ(tree->GetRowRect(plain).height, 20.0f);
    EXPECT_FLOAT_EQ(tree->GetRowRect(plain).y, 36.0f);

    plain->SetHeight(24.5f);
    EXPECT_FLOAT_EQ(tree->GetRowRect(plain).height, 25.0f);
}

TEST_F(TreeTest, EachRowsAccessibleNameIsItsText) {
    Row(nullptr, u"Alpha");
    Row(nullptr, u"Beta");
    Row(nullptr, u"Gamma");
    Show();

    QAccessibleInterface* view = QAccessible::queryAccessibleInterface(ViewOf(*tree));
    ASSERT_NE(view, nullptr);
    // Qt's tree lists the (hidden) header's cells first, one per column, then the rows' cells.
    ASSERT_EQ(view->childCount(), 4);
    EXPECT_EQ(view->child(0)->role(), QAccessible::ColumnHeader);
    EXPECT_TRUE(view->child(0)->text(QAccessible::Name).isEmpty());
    EXPECT_EQ(view->child(1)->text(QAccessible::Name), QStringLiteral("Alpha"));
    EXPECT_EQ(view->child(2)->text(QAccessible::Name), QStringLiteral("Beta"));
    EXPECT_EQ(view->child(3)->text(QAccessible::Name), QStringLiteral("Gamma"));
    EXPECT_EQ(view->child(3)->role(), QAccessible::TreeItem);
}

TEST_F(TreeTest, TypingSelectsTheRowWhoseTextStartsThatWay) {
    Row(nullptr, u"Alpha");
    UI_TreeRow* beta = Row(nullptr, u"Beta");
    Row(nullptr, u"Gamma");
    Show();

    QTest::keyClicks(ViewOf(*tree), QStringLiteral("be"));

    EXPECT_EQ(tree->GetSelectedRows(), std::vector<UI_TreeRow*>{beta});
}

TEST_F(TreeTest, TheDrawFunctionGetsEachColumnsCellAfterTheIndentation) {
    std::vector<std::pair<int, RectT<float>>> cells;
    tree = boost::intrusive_ptr<UI_MultiColumnTree>(new UI_MultiColumnTree(
        [&cells](limner::Limner* limner, UI_TreeRow*, int column, RectT<float> rect) {
            ASSERT_NE(limner, nullptr);
            EXPECT_FALSE(limner->IsMeasuring());
            cells.emplace_back(column, rect);
        },
        {}, {}));
    tree->SetColumnWidths({150.0f, 100.0f});
    UI_TreeRow* folder = tree->CreateAndInsertRow(nullptr);
    tree->CreateAndInsertRow(folder);
    Show(300.0f, 100.0f);
    tree->OpenRow(folder);
    cells.clear();
    ViewOf(*tree)->viewport()->repaint();

    ASSERT_EQ(cells.size(), 4u);
    const int indentation = ViewOf(*tree)->indentation();
    EXPECT_EQ(cells[0], std::make_pair(0, RectT<float>{float(indentation), 0.0f,
                                                       150.0f - float(indentation), 20.0f}));
    EXPECT_EQ(cells[1], std::make_pair(1, RectT<float>{150.0f, 0.0f, 150.0f, 20.0f}));
    EXPECT_EQ(cells[2].second.x, float(2 * indentation));
    EXPECT_EQ(cells[2].second.y, 20.0f);
    EXPECT_EQ(cells[3].first, 1);
}

TEST_F(TreeTest, RowsOfAnotherTreeAreRefused) {
    auto other = MakeTree(std::make_shared<Recorder>());
    UI_TreeRow* foreign = other->CreateAndInsertRow(nullptr);
    EXPECT_ANY_THROW(tree->CreateAndInsertRow(foreign));
    EXPECT_ANY_THROW(tree->RemoveRow(foreign));
    EXPECT_EQ(other->GetRowCount(), 1u);
}

TEST_F(TreeTest, TheTreeTakesTabFocus) {
    EXPECT_EQ(ViewOf(*tree)->focusPolicy(), Qt::StrongFocus);
}

}  // namespace
