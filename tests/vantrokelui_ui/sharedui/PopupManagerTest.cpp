#include <vantrokelui/sharedui/PopupManager.h>

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <gtest/gtest.h>

#include <kelui/ui/UI_HostWidgetNode.h>
#include <vantrokelui/sharedui/CreatePopupWorkflow.h>
#include <vantrokelui/sharedui/Measuring.h>

#include "support/qt/QtMainThreadFixture.h"

namespace vantrokelui::sharedui {
namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

class FixedView final : public kelui::ui::UI_SubView {
public:
    FixedView(float width, float height) : size{width, height} {}
    PointT<float> UI_GetRecommendedSize(limner::Limner&) override { return size; }
    PointT<float> size;
};

// A host window with a header button, as an editor has: the popup hangs from the button.
class PopupManagerTest : public testsupport::QtMainThreadFixture {
protected:
    void SetUp() override {
        QtMainThreadFixture::SetUp();
        window.setGeometry(200, 150, 800, 500);
        auto* layout = new QVBoxLayout(&window);
        button = new QPushButton(QStringLiteral("Share"), &window);
        button->setFixedSize(90, 28);
        layout->addWidget(button, 0, Qt::AlignRight | Qt::AlignTop);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        anchor.reset(new kelui::ui::UI_HostWidgetNode(button));
        manager = std::make_shared<PopupManager>();
        view.reset(new FixedView(340.0f, 120.0f));
    }
    void TearDown() override {
        manager.reset();
        anchor.reset();
        QtMainThreadFixture::TearDown();
    }

    RectT<float> AnchorOnScreen() const {
        const QRect rect(button->mapToGlobal(QPoint(0, 0)), button->size());
        return {static_cast<float>(rect.x()), static_cast<float>(rect.y()),
                static_cast<float>(rect.width()), static_cast<float>(rect.height())};
    }
    QWidget* PopupWindow() const { return manager->GetPopupContainer()->GetWidget(); }

    QWidget window;
    QPushButton* button = nullptr;
    boost::intrusive_ptr<kelui::ui::UI_HostWidgetNode> anchor;
    std::shared_ptr<PopupManager> manager;
    boost::intrusive_ptr<FixedView> view;
};

TEST_F(PopupManagerTest, TheMainViewIsShownFromTheStartAndNoPopupExistsBeforeTheFirstShow) {
    EXPECT_TRUE(manager->GetMainView()->UI_IsShown());
    EXPECT_EQ(manager->GetPopupContainer(), nullptr);
    manager->AddSection(0, view);
    manager->UpdateLayout();  // returns at once: no popup yet
    EXPECT_EQ(manager->GetPopupContainer(), nullptr);
}

TEST_F(PopupManagerTest, BelowAnchorPutsTheRightEdgeOnTheAnchorsAndTheTopFourBelowIt) {
    manager->AddSection(0, view);
    manager->SetAnchorNode(anchor);
    manager->ShowWorkflow();
    Pump();

    ASSERT_NE(manager->GetPopupContainer(), nullptr);
    EXPECT_TRUE(manager->GetPopupContainer()->IsPopupShown());
    const auto size = GetRecommendedSize(manager->GetMainView());
    EXPECT_EQ(size, (PointT<float>{342.0f, 122.0f}));
    EXPECT_EQ(manager->GetMainView()->UI_GetLocalRectF(), (RectT<float>{0, 0, 342.0f, 122.0f}));
    const auto anchorRect = AnchorOnScreen();
    const QRect popup = PopupWindow()->frameGeometry();
    EXPECT_EQ(popup.x() + popup.width(), static_cast<int>(anchorRect.Right()));
    EXPECT_EQ(popup.y(), static_cast<int>(anchorRect.Bottom() + 4.0f));
    EXPECT_EQ(popup.size(), QSize(342, 122));
}

TEST_F(PopupManagerTest, CenteredOnAnchorAndAtPositionPlaceTheTopLeftAsAsked) {
    manager->AddSection(0, view);
    manager->SetAnchorNode(anchor);
    manager->SetPlacement(PopupManager::CenteredOnAnchor);
    manager->ShowWorkflow();
    Pump();
    const auto anchorRect = AnchorOnScreen();
    EXPECT_EQ(PopupWindow()->frameGeometry().topLeft(),
              QPoint(static_cast<int>(anchorRect.x + (anchorRect.width - 342.0f) * 0.5f),
                     static_cast<int>(anchorRect.y + (anchorRect.height - 122.0f) * 0.5f)));

    manager->SetPlacement(PopupManager::AtPosition);
    manager->SetPopupPosition({30.0f, 40.0f});
    manager->UpdateLayout();
    Pump();
    EXPECT_EQ(PopupWindow()->frameGeometry().topLeft(), QPoint(30, 40));

    manager->SetPlacement(7);
    manager->UpdateLayout();
    Pump();
    EXPECT_EQ(PopupWindow()->frameGeometry().topLeft(), QPoint(0, 0));
}

TEST_F(PopupManagerTest, APopupWhoseAnchorDiedShowsNothingAndALiveAnchorLaterShowsIt) {
    manager->AddSection(0, view);
    {
        QPushButton doomed(QStringLiteral("Gone"), &window);
        boost::intrusive_ptr<kelui::ui::UI_HostWidgetNode> dead(
            new kelui::ui::UI_HostWidgetNode(&doomed));
        manager->SetAnchorNode(dead);
    }  // the last reference to the anchor node goes here
    manager->ShowWorkflow();
    Pump();
    EXPECT_EQ(manager->GetPopupContainer(), nullptr);

    manager->SetAnchorNode(anchor);
    manager->ShowWorkflow();
    Pump();
    ASSERT_NE(manager->GetPopupContainer(), nullptr);
    EXPECT_TRUE(manager->GetPopupContainer()->IsPopupShown());
}

TEST_F(PopupManagerTest, AnOutsideClickCommitsRunsTheCallbacksInOrderAndTheHideKeepsTheContainer) {
    std::vector<int> calls;
    manager->AddCommitCallback([&] { calls.push_back(1); });
    manager->AddCommitCallback([&] {
        calls.push_back(2);
        manager->HideWorkflow();  // what the screen manager's callback leads to
    });
    manager->AddSection(0, view);
    manager->SetAnchorNode(anchor);
    manager->ShowWorkflow();
    Pump();
    const auto container = manager->GetPopupContainer();
    ASSERT_TRUE(container->IsPopupShown());

    // A press on the host's window, well away from the popup.
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, QPoint(20, 400));
    PumpUntil([&] { return !container->IsPopupShown(); });
    EXPECT_EQ(calls, (std::vector<int>{1, 2}));

    manager->ShowWorkflow();
    Pump();
    EXPECT_EQ(manager->GetPopupContainer(), container);
    EXPECT_TRUE(container->IsPopupShown());
}

TEST_F(PopupManagerTest, ASecondShowInstallsTheCommitFunctionAgainInPlaceOfTheFirst) {
    int first = 0;
    int second = 0;
    manager->AddCommitCallback([&] { ++first; });
    manager->AddSection(0, view);
    manager->SetAnchorNode(anchor);
    manager->ShowWorkflow();
    Pump();
    manager->AddCommitCallback([&] { ++second; });
    manager->ShowWorkflow();
    Pump();

    QTest::keyClick(PopupWindow(), Qt::Key_Escape);
    PumpUntil([&] { return first + second > 0; });
    // One commit ran the list as it stood at the second show, once.
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
}

TEST_F(PopupManagerTest, AnEmptyCommitCallbackStopsTheRunWithABadFunctionCall) {
    int before = 0;
    int after = 0;
    manager->AddCommitCallback([&] { ++before; });
    manager->AddCommitCallback({});
    manager->AddCommitCallback([&] { ++after; });
    manager->AddSection(0, view);
    manager->SetAnchorNode(anchor);
    manager->ShowWorkflow();
    Pump();
    // Run the installed commit function directly: an exception must not cross Qt's loop.
    bool threw = false;
    try {
        manager->GetPopupContainer()->GetCommitFunction()();
    } catch (const std::bad_function_call&) {
        threw = true;
    }
    EXPECT_TRUE(threw);
    EXPECT_EQ(before, 1);
    EXPECT_EQ(after, 0);
}

TEST_F(PopupManagerTest, AddSectionPastTheEndAppendsAndShowSectionWithNullShowsEverySection) {
    boost::intrusive_ptr<FixedView> other(new FixedView(340.0f, 30.0f));
    const auto first = manager->AddSection(0, view);
    const auto second = manager->AddSection(99, other);
    ASSERT_EQ(manager->GetMainView()->ChildCount(), 2u);
    EXPECT_EQ(manager->GetMainView()->ChildAt(1), second);
    EXPECT_TRUE(first->UI_IsShown());

    manager->ShowSection(second);
    EXPECT_FALSE(first->UI_IsShown());
    EXPECT_TRUE(second->UI_IsShown());
    manager->ShowSection(nullptr);
    EXPECT_TRUE(first->UI_IsShown());
    EXPECT_TRUE(second->UI_IsShown());
}

TEST_F(PopupManagerTest, HideWorkflowHidesWithoutCommitting) {
    int commits = 0;
    manager->AddCommitCallback([&] { ++commits; });
    manager->AddSection(0, view);
    manager->SetAnchorNode(anchor);
    manager->ShowWorkflow();
    Pump();
    manager->HideWorkflow();
    Pump();
    EXPECT_FALSE(manager->GetPopupContainer()->IsPopupShown());
    EXPECT_EQ(commits, 0);
}

TEST_F(PopupManagerTest, CreatePopupWorkflowMakesAPopupManager) {
    const auto workflow = CreatePopupWorkflow();
    EXPECT_NE(std::dynamic_pointer_cast<PopupManager>(workflow), nullptr);
}

}  // namespace
}  // namespace vantrokelui::sharedui
