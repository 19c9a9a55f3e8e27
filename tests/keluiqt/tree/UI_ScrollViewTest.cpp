#include <kelui/controls/UI_ScrollView.h>

#include <memory>

#include <QAbstractScrollArea>
#include <QApplication>
#include <QLineEdit>
#include <QScrollBar>
#include <QSpontaneKeyEvent>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include "keluiqt/tree/TreeTestSupport.h"

namespace {

using kelcore::geom::RectT;
using kelui::controls::UI_ScrollView;
using kelui::tests::NodeWindow;
using kelui::tests::ProcessEventsUntil;
using kelui::ui::UI_SubView;

QAbstractScrollArea* AreaOf(UI_ScrollView& view) {
    return qobject_cast<QAbstractScrollArea*>(view.GetWidget());
}

// Where the content's widget is inside the viewport now.
QPoint ContentPosition(UI_ScrollView& view) {
    return view.GetContentView()->GetWidget()->mapTo(AreaOf(view)->viewport(), QPoint(0, 0));
}

// Turns the wheel towards the user by `notches`, one event per notch, as a mouse does. The
// events are marked as coming from the platform so that Qt hands them up to the parents of a
// widget that does not take them.
void TurnWheel(QWidget* widget, int notches) {
    const QPointF position(widget->width() / 2.0, widget->height() / 2.0);
    for (int notch = 0; notch < notches; ++notch) {
        QWheelEvent wheel(position, widget->mapToGlobal(position), QPoint(), QPoint(0, -120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&wheel);
        QApplication::instance()->notify(widget, &wheel);
    }
}

// A node over a line edit: something that takes Tab focus inside the content.
struct FieldNode : UI_SubView {
    FieldNode() : UI_SubView(new QLineEdit) {}
};

class ScrollViewTest : public ::testing::Test {
protected:
    void Show() {
        window = std::make_unique<NodeWindow>(*scroll, RectT<float>{0.0f, 0.0f, 200.0f, 100.0f});
        ASSERT_TRUE(window->IsExposed());
    }
    void TearDown() override { window.reset(); }

    boost::intrusive_ptr<UI_ScrollView> scroll{new UI_ScrollView};
    std::unique_ptr<NodeWindow> window;
};

TEST_F(ScrollViewTest, TheContentViewIsAChildWhoseWidgetLivesInTheViewport) {
    auto content = scroll->GetContentView();
    ASSERT_NE(content, nullptr);
    EXPECT_EQ(content->UI_GetParentNode(), scroll.get());
    EXPECT_EQ(content->GetWidget()->parentWidget(), AreaOf(*scroll)->viewport());

    auto child = boost::intrusive_ptr<UI_SubView>(new UI_SubView);
    content->ChildPushBack(child);
    EXPECT_EQ(child->GetWidget()->parentWidget(), content->GetWidget());
}

TEST_F(ScrollViewTest, TheWheelScrollsTallContentAndLeavesItsRectangleAlone) {
    const RectT<float> contentRect{0.0f, 0.0f, 180.0f, 500.0f};
    scroll->SetContentRect(contentRect);
    Show();

    TurnWheel(AreaOf(*scroll)->viewport(), 1);

    const float position = scroll->GetScrollPosition();
    EXPECT_GT(position, 0.0f);
    EXPECT_EQ(scroll->GetContentView()->UI_GetLocalRectF(), contentRect);
    EXPECT_EQ(ContentPosition(*scroll), QPoint(0, -static_cast<int>(position)));

    TurnWheel(AreaOf(*scroll)->viewport(), 10);
    EXPECT_FLOAT_EQ(scroll->GetScrollPosition(), 500.0f - 100.0f);
    EXPECT_EQ(ContentPosition(*scroll), QPoint(0, -400));
}

TEST_F(ScrollViewTest, TheWheelOverAChildOfTheContentScrollsToo) {
    scroll->SetContentRect({0.0f, 0.0f, 180.0f, 500.0f});
    auto child = boost::intrusive_ptr<UI_SubView>(new UI_SubView);
    scroll->GetContentView()->ChildPushBack(child);
    child->UI_SetLocalRectF({0.0f, 0.0f, 180.0f, 500.0f});
    child->UI_Show(true);
    Show();

    TurnWheel(child->GetWidget(), 1);

    EXPECT_GT(scroll->GetScrollPosition(), 0.0f);
}

TEST_F(ScrollViewTest, PageDownAndPageUpScrollByAPageWhenFocused) {
    scroll->SetContentRect({0.0f, 0.0f, 180.0f, 500.0f});
    Show();
    AreaOf(*scroll)->setFocus();
    ASSERT_TRUE(ProcessEventsUntil([this] { return AreaOf(*scroll)->hasFocus(); }));

    QTest::keyClick(AreaOf(*scroll), Qt::Key_PageDown);
    const float pageHeight = scroll->GetViewportSize().y;
    EXPECT_FLOAT_EQ(scroll->GetScrollPosition(), pageHeight);

    QTest::keyClick(AreaOf(*scroll), Qt::Key_PageUp);
    EXPECT_FLOAT_EQ(scroll->GetScrollPosition(), 0.0f);
}

TEST_F(ScrollViewTest, ClickingTheScrollBarBelowItsHandleScrollsAPage) {
    scroll->SetContentRect({0.0f, 0.0f, 180.0f, 500.0f});
    Show();
    QScrollBar* bar = AreaOf(*scroll)->verticalScrollBar();
    ASSERT_TRUE(bar->isVisible());

    QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(bar->width() / 2, bar->height() - 20));

    EXPECT_GT(scroll->GetScrollPosition(), 0.0f);
    EXPECT_EQ(ContentPosition(*scroll), QPoint(0, -static_cast<int>(scroll->GetScrollPosition())));
}

TEST_F(ScrollViewTest, UpdateTakesInAContentViewThatGrewOnItsOwn) {
    scroll->SetContentRect({0.0f, 0.0f, 180.0f, 150.0f});
    Show();
    scroll->ScrollTo(1000.0f);
    ASSERT_FLOAT_EQ(scroll->GetScrollPosition(), 50.0f);

    scroll->GetContentView()->UI_SetLocalRectF({0.0f, 0.0f, 180.0f, 600.0f});
    scroll->Update();
    scroll->ScrollTo(1000.0f);

    EXPECT_FLOAT_EQ(scroll->GetScrollPosition(), 500.0f);
    EXPECT_EQ(ContentPosition(*scroll), QPoint(0, -500));
}

TEST_F(ScrollViewTest, ShrinkingTheContentMovesThePositionBackToTheNewEnd) {
    scroll->SetContentRect({0.0f, 0.0f, 180.0f, 600.0f});
    Show();
    scroll->ScrollTo(450.0f);

    scroll->SetContentRect({0.0f, 0.0f, 180.0f, 300.0f});

    EXPECT_FLOAT_EQ(scroll->GetScrollPosition(), 200.0f);
    EXPECT_EQ(ContentPosition(*scroll), QPoint(0, -200));
}

TEST_F(ScrollViewTest, ContentThatFitsDoesNotScrollAndShowsNoBar) {
    scroll->SetContentRect({0.0f, 0.0f, 180.0f, 80.0f});
    Show();

    scroll->ScrollTo(40.0f);

    EXPECT_FLOAT_EQ(scroll->GetScrollPosition(), 0.0f);
    EXPECT_FALSE(AreaOf(*scroll)->verticalScrollBar()->isVisible());
    EXPECT_FLOAT_EQ(scroll->GetViewportSize().x, 200.0f);
}

TEST_F(ScrollViewTest, TallContentBringsTheBarAtOnceAndNarrowsTheViewport) {
    Show();
    ASSERT_FLOAT_EQ(scroll->GetViewportSize().x, 200.0f);

    scroll->SetContentRect({0.0f, 0.0f, 180.0f, 500.0f});

    QScrollBar* bar = AreaOf(*scroll)->verticalScrollBar();
    EXPECT_TRUE(bar->isVisible());
    EXPECT_FLOAT_EQ(scroll->GetViewportSize().x, 200.0f - static_cast<float>(bar->width()));
    EXPECT_FLOAT_EQ(scroll->GetViewportSize().y, 100.0f);

    scroll->SetContentRect({0.0f, 0.0f, 180.0f, 60.0f});
    EXPECT_FALSE(bar->isVisible());
    EXPECT_FLOAT_EQ(scroll->GetViewportSize().x, 200.0f);
}

TEST_F(ScrollViewTest, AHiddenScrollViewKnowsItsViewportAndRange) {
    scroll->UI_SetLocalRectF({0.0f, 0.0f, 200.0f, 100.0f});
    scroll->SetContentRect({0.0f, 0.0f, 180.0f, 500.0f});

    const float barWidth =
        static_cast<float>(AreaOf(*scroll)->verticalScrollBar()->sizeHint().width());
    EXPECT_FLOAT_EQ(scroll->GetViewportSize().x, 200.0f - barWidth);
    EXPECT_FLOAT_EQ(scroll->GetViewportSize().y, 100.0f);
    scroll->ScrollTo(1000.0f);
    EXPECT_FLOAT_EQ(scroll->GetScrollPosition(), 400.0f);

    Show();
    EXPECT_EQ(QSizeF(AreaOf(*scroll)->viewport()->size()),
              QSizeF(scroll->GetViewportSize().x, scroll->GetViewportSize().y));
    EXPECT_FLOAT_EQ(scroll->GetScrollPosition(), 400.0f);
    EXPECT_EQ(ContentPosition(*scroll), QPoint(0, -400));
}

TEST_F(ScrollViewTest, ResizingTheScrollViewKeepsTheContentScrolled) {
    scroll->SetContentRect({0.0f, 0.0f, 180.0f, 500.0f});
    Show();
    scroll->ScrollTo(120.0f);

    scroll->UI_SetLocalRectF({10.0f, 0.0f, 190.0f, 90.0f});

    EXPECT_FLOAT_EQ(scroll->GetScrollPosition(), 120.0f);
    EXPECT_EQ(ContentPosition(*scroll), QPoint(0, -120));
    EXPECT_EQ(scroll->GetContentView()->UI_GetLocalRectF(),
              (RectT<float>{0.0f, 0.0f, 180.0f, 500.0f}));
}

TEST_F(ScrollViewTest, TabToAFieldBelowTheFoldScrollsItIntoView) {
    scroll->SetContentRect({0.0f, 0.0f, 180.0f, 500.0f});
    auto top = boost::intrusive_ptr<FieldNode>(new FieldNode);
    auto bottom = boost::intrusive_ptr<FieldNode>(new FieldNode);
    scroll->GetContentView()->ChildPushBack(top);
    scroll->GetContentView()->ChildPushBack(bottom);
    top->UI_SetLocalRectF({10.0f, 10.0f, 150.0f, 24.0f});
    bottom->UI_SetLocalRectF({10.0f, 400.0f, 150.0f, 24.0f});
    top->UI_Show(true);
    bottom->UI_Show(true);
    Show();
    top->GetWidget()->setFocus();
    ASSERT_TRUE(ProcessEventsUntil([&] { return top->GetWidget()->hasFocus(); }));

    QTest::keyClick(top->GetWidget(), Qt::Key_Tab);

    ASSERT_TRUE(bottom->GetWidget()->hasFocus());
    const QRect shown(bottom->GetWidget()->mapTo(AreaOf(*scroll)->viewport(), QPoint(0, 0)),
                      bottom->GetWidget()->size());
    EXPECT_TRUE(AreaOf(*scroll)->viewport()->rect().contains(shown));
}

TEST_F(ScrollViewTest, TheContentViewOutlivesTheScrollViewWithItsWidget) {
    auto content = scroll->GetContentView();
    auto child = boost::intrusive_ptr<UI_SubView>(new UI_SubView);
    content->ChildPushBack(child);

    scroll.reset();

    ASSERT_NE(content->GetWidget(), nullptr);
    EXPECT_EQ(content->UI_GetParentNode(), nullptr);
    EXPECT_EQ(child->GetWidget()->parentWidget(), content->GetWidget());
}

}  // namespace
