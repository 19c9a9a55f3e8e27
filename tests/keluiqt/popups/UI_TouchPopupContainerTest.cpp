#include <functional>

#include <kelcore/logging/CapturedLogForTesting.h>
#include <kelui/controls/OS_ViewContainer.h>
#include <kelui/controls/UI_Popup.h>
#include <kelui/controls/UI_TouchPopupContainer.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/UI_SubView.h>

#include <QGuiApplication>
#include <QMenu>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

#include "keluiqt/popups/PopupsTestSupport.h"

namespace {

using kelui::controls::OS_ViewContainer;
using kelui::controls::UI_Popup;
using kelui::controls::UI_TouchPopupContainer;
using kelui::ui::UI_Node;
using kelui::ui::UI_SubView;
using popupstest::HostWindow;
using popupstest::Make;
using popupstest::WaitFor;

// What the panel's pre- and post-show callbacks do: find the popup above and set its flag.
void SetChildMenuFlagAbove(UI_Node& node, bool showing) {
    for (UI_Node* parent = node.UI_GetParentNode(); parent; parent = parent->UI_GetParentNode()) {
        if (auto* container = dynamic_cast<UI_TouchPopupContainer*>(parent)) {
            container->SetChildMenuShowing(showing);
            return;
        }
    }
}

// A popup hanging from a button-sized anchor in a host window, with content that holds a
// pop-up list, counting its commits.
struct ShownPopup {
    ShownPopup() {
        anchor = Make<UI_SubView>();
        host.node->ChildPushBack(anchor);
        anchor->UI_SetLocalRectF({300.0f, 10.0f, 40.0f, 20.0f});
        anchor->UI_Show(true);
        container = Make<UI_TouchPopupContainer>(nullptr, anchor, false, true, false, 2u, true);
        content = Make<UI_SubView>();
        list = Make<UI_Popup>();
        list->AddItem(u"Apple", -1);
        list->AddItem(u"Pear", -1);
        list->SetPreShowMenuCallback([](UI_Popup& popup) { SetChildMenuFlagAbove(popup, true); });
        list->SetPostShowMenuCallback([](UI_Popup& popup) { SetChildMenuFlagAbove(popup, false); });
        content->ChildPushBack(list);
        list->UI_SetLocalRectF({15.0f, 15.0f, 150.0f, 24.0f});
        list->UI_Show(true);
        content->UI_Show(true);
        container->GetContainer()->ChildPushBack(content);
        content->UI_SetLocalRectF({0.0f, 0.0f, 220.0f, 120.0f});
        container->InstallNotifyOnCommit([this] { ++commits; });
    }
    ~ShownPopup() {
        list->HideMenu();
        container->UI_Hide(true);
    }

    bool Start() {
        container->StartPopup();
        container->SetContentSize(120.0f, 90.0f, 220.0f, 120.0f);
        return WaitFor([this] { return Window()->isVisible(); });
    }
    QWidget* Window() const { return container->GetWidget(); }
    // A press and release on the host window, outside the popup, as the platform delivers it.
    void ClickOutside() {
        QTest::mouseClick(host.window.windowHandle(), Qt::LeftButton, {}, QPoint(20, 200));
    }
    void PressEsc() {
        QWidget* target = QApplication::focusWidget() ? QApplication::focusWidget() : Window();
        QTest::keyClick(target, Qt::Key_Escape);
    }

    HostWindow host;
    boost::intrusive_ptr<UI_SubView> anchor;
    boost::intrusive_ptr<UI_TouchPopupContainer> container;
    boost::intrusive_ptr<UI_SubView> content;
    boost::intrusive_ptr<UI_Popup> list;
    int commits = 0;
};

TEST(UI_TouchPopupContainer, StartPopupShowsAFramelessWindowAroundTheContent) {
    ShownPopup popup;
    ASSERT_TRUE(popup.Start());
    EXPECT_TRUE(popup.container->IsPopupShown());
    EXPECT_TRUE(popup.Window()->isWindow());
    EXPECT_TRUE(popup.Window()->windowFlags().testFlag(Qt::FramelessWindowHint) ||
                popup.Window()->windowType() == Qt::Popup);
    EXPECT_EQ(popup.Window()->geometry(), QRect(120, 90, 220, 120));
    EXPECT_EQ(popup.container->GetContainer()->UI_GetLocalRectF(),
              (kelcore::geom::RectT<float>{0.0f, 0.0f, 220.0f, 120.0f}));
    EXPECT_EQ(popup.container->GetContainer()->GetWidget()->geometry(), QRect(0, 0, 220, 120));
    // The content is on screen exactly where it was asked to be.
    const auto global = popup.content->UI_LocalToGlobalF(popup.content->UI_GetLocalRectF());
    EXPECT_EQ(global.x, 120.0f);
    EXPECT_EQ(global.y, 90.0f);
}

TEST(UI_TouchPopupContainer, TheViewContainersParentIsThePopup) {
    ShownPopup popup;
    EXPECT_EQ(popup.container->GetContainer()->UI_GetParentNode(), popup.container.get());
    EXPECT_EQ(popup.container->GetAnchor(), popup.anchor);
}

TEST(UI_TouchPopupContainer, ANullSupplierMeansTheDefaultOneAndTheContentDrawsWithIt) {
    ShownPopup popup;
    EXPECT_EQ(popup.list->UI_GetDrawSupplier(),
              kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
    auto own = std::make_shared<limner::WidgetDrawingSupplier>();
    auto withOwn = Make<UI_TouchPopupContainer>(own, nullptr, false, false, false, 0u, false);
    auto node = Make<UI_SubView>();
    withOwn->GetContainer()->ChildPushBack(node);
    EXPECT_EQ(node->UI_GetDrawSupplier(), own);
}

TEST(UI_TouchPopupContainer, KeepsItsOptions) {
    ShownPopup popup;
    const auto& options = popup.container->GetOptions();
    EXPECT_FALSE(options.first);
    EXPECT_TRUE(options.second);
    EXPECT_FALSE(options.third);
    EXPECT_EQ(options.dpiSelectionType, 2u);
    EXPECT_TRUE(options.fifth);
}

TEST(UI_TouchPopupContainer, TheContentGetsTheKeyboard) {
    ShownPopup popup;
    ASSERT_TRUE(popup.Start());
    EXPECT_TRUE(WaitFor([&] { return QApplication::focusWidget() == popup.list->GetWidget(); }));
}

TEST(UI_TouchPopupContainer, CommitsOnceOnAClickOutside) {
    ShownPopup popup;
    ASSERT_TRUE(popup.Start());
    popup.ClickOutside();
    EXPECT_TRUE(WaitFor([&] { return !popup.container->IsPopupShown(); }));
    EXPECT_EQ(popup.commits, 1);
}

TEST(UI_TouchPopupContainer, APressOnTheAnchorClosesItWithoutReachingTheAnchor) {
    ShownPopup popup;
    ASSERT_TRUE(popup.Start());
    // The anchor is a node of the host window at (300, 10), 40 × 20.
    QTest::mouseClick(popup.host.window.windowHandle(), Qt::LeftButton, {}, QPoint(310, 20));
    EXPECT_TRUE(WaitFor([&] { return !popup.container->IsPopupShown(); }));
    EXPECT_EQ(popup.commits, 1);
    // Qt would otherwise hand the press on to the anchor, which would open the popup again.
    EXPECT_TRUE(popup.Window()->testAttribute(Qt::WA_NoMouseReplay));

    ASSERT_TRUE(popup.Start());
    popup.ClickOutside();
    EXPECT_TRUE(WaitFor([&] { return !popup.container->IsPopupShown(); }));
    EXPECT_FALSE(popup.Window()->testAttribute(Qt::WA_NoMouseReplay));
}

TEST(UI_TouchPopupContainer, AClickInsideDoesNotCommit) {
    ShownPopup popup;
    ASSERT_TRUE(popup.Start());
    QTest::mouseClick(popup.Window()->windowHandle(), Qt::LeftButton, {}, QPoint(200, 100));
    QCoreApplication::processEvents();
    EXPECT_TRUE(popup.container->IsPopupShown());
    EXPECT_EQ(popup.commits, 0);
}

TEST(UI_TouchPopupContainer, CommitsOnceOnEsc) {
    ShownPopup popup;
    ASSERT_TRUE(popup.Start());
    popup.PressEsc();
    EXPECT_TRUE(WaitFor([&] { return !popup.container->IsPopupShown(); }));
    EXPECT_EQ(popup.commits, 1);
}

TEST(UI_TouchPopupContainer, DoesNotCommitWhileTheChildMenuFlagIsSet) {
    ShownPopup popup;
    ASSERT_TRUE(popup.Start());
    popup.container->SetChildMenuShowing(true);
    EXPECT_TRUE(popup.container->IsChildMenuShowing());

    popup.ClickOutside();
    popup.PressEsc();
    QCoreApplication::processEvents();
    EXPECT_TRUE(popup.container->IsPopupShown());
    EXPECT_EQ(popup.commits, 0);

    popup.container->SetChildMenuShowing(false);
    popup.PressEsc();
    EXPECT_TRUE(WaitFor([&] { return !popup.container->IsPopupShown(); }));
    EXPECT_EQ(popup.commits, 1);
}

TEST(UI_TouchPopupContainer, HidingFromCodeDoesNotCommit) {
    ShownPopup popup;
    ASSERT_TRUE(popup.Start());
    popup.container->UI_Hide(true);
    EXPECT_FALSE(popup.container->IsPopupShown());
    QCoreApplication::processEvents();
    EXPECT_EQ(popup.commits, 0);
}

TEST(UI_TouchPopupContainer, ASecondStartPopupShowsItAgain) {
    ShownPopup popup;
    ASSERT_TRUE(popup.Start());
    popup.PressEsc();
    ASSERT_TRUE(WaitFor([&] { return !popup.container->IsPopupShown(); }));

    ASSERT_TRUE(popup.Start());
    EXPECT_TRUE(WaitFor([&] { return QApplication::focusWidget() == popup.list->GetWidget(); }));
    popup.ClickOutside();
    EXPECT_TRUE(WaitFor([&] { return !popup.container->IsPopupShown(); }));
    EXPECT_EQ(popup.commits, 2);
}

TEST(UI_TouchPopupContainer, InstallNotifyOnCommitReplacesTheFunction) {
    ShownPopup popup;
    int replaced = 0;
    popup.container->InstallNotifyOnCommit([&] { ++replaced; });
    ASSERT_TRUE(popup.Start());
    popup.PressEsc();
    ASSERT_TRUE(WaitFor([&] { return !popup.container->IsPopupShown(); }));
    EXPECT_EQ(replaced, 1);
    EXPECT_EQ(popup.commits, 0);
}

TEST(UI_TouchPopupContainer, ACommitThatHidesThePopupCommitsOnce) {
    ShownPopup popup;
    popup.container->InstallNotifyOnCommit([&] {
        ++popup.commits;
        popup.container->UI_Hide(true);  // what the workflow host does when it commits
    });
    ASSERT_TRUE(popup.Start());
    popup.ClickOutside();
    EXPECT_TRUE(WaitFor([&] { return !popup.container->IsPopupShown(); }));
    QCoreApplication::processEvents();
    EXPECT_EQ(popup.commits, 1);
}

TEST(UI_TouchPopupContainer, ACommitMayDropTheLastReferenceToThePopup) {
    ShownPopup popup;
    bool committed = false;
    popup.container->InstallNotifyOnCommit([&] {
        committed = true;
        popup.container.reset();
    });
    ASSERT_TRUE(popup.Start());
    QPointer<QWidget> window = popup.Window();
    popup.PressEsc();
    EXPECT_TRUE(WaitFor([&] { return committed && !popup.container; }));
    EXPECT_TRUE(window.isNull());
    popup.container = Make<UI_TouchPopupContainer>(nullptr, nullptr, false, false, false, 0u,
                                                   false);  // for the fixture's teardown
}

TEST(UI_TouchPopupContainer, ACommitThatThrowsIsLoggedAndThePopupStillCloses) {
    ShownPopup popup;
    popup.container->InstallNotifyOnCommit([] { throw std::bad_function_call(); });
    EXPECT_TRUE(static_cast<bool>(popup.container->GetCommitFunction()));
    ASSERT_TRUE(popup.Start());
    kelcore::logging::CapturedLogForTesting log;

    popup.PressEsc();

    EXPECT_TRUE(WaitFor([&] { return !popup.container->IsPopupShown(); }));
    ASSERT_EQ(log.Entries().size(), 1u);
    EXPECT_NE(log.Entries()[0].text.find("UI_TouchPopupContainer"), std::string::npos);
}

TEST(UI_TouchPopupContainer, SurvivesAListOpenedFromInsideIt) {
    ShownPopup popup;
    ASSERT_TRUE(popup.Start());
    popup.list->ShowMenu();
    ASSERT_TRUE(WaitFor([&] { return popup.list->GetMenu()->isVisible(); }));
    EXPECT_TRUE(popup.container->IsChildMenuShowing());

    QTest::keyClick(popup.list->GetMenu(), Qt::Key_Down);
    QTest::keyClick(popup.list->GetMenu(), Qt::Key_Return);
    ASSERT_TRUE(WaitFor([&] { return !popup.list->GetMenu()->isVisible(); }));

    EXPECT_EQ(popup.list->GetValue(), 0);
    EXPECT_FALSE(popup.container->IsChildMenuShowing());
    EXPECT_TRUE(popup.container->IsPopupShown());
    EXPECT_EQ(popup.commits, 0);
    // The popup is the one that answers Esc again.
    popup.PressEsc();
    EXPECT_TRUE(WaitFor([&] { return !popup.container->IsPopupShown(); }));
    EXPECT_EQ(popup.commits, 1);
}

TEST(UI_TouchPopupContainer, EscInsideItsListClosesOnlyTheList) {
    ShownPopup popup;
    ASSERT_TRUE(popup.Start());
    popup.list->ShowMenu();
    ASSERT_TRUE(WaitFor([&] { return popup.list->GetMenu()->isVisible(); }));
    QTest::keyClick(popup.list->GetMenu(), Qt::Key_Escape);
    ASSERT_TRUE(WaitFor([&] { return !popup.list->GetMenu()->isVisible(); }));
    QCoreApplication::processEvents();
    EXPECT_TRUE(popup.container->IsPopupShown());
    EXPECT_EQ(popup.commits, 0);
}

TEST(UI_TouchPopupContainer, ReportsAContentScaleOfOne) {
    ShownPopup popup;
    const auto factors = popup.container->GetContainer()->GetScaleFactors();
    EXPECT_EQ(factors[2], 1.0f);
    EXPECT_EQ(factors[3], 1.0f);
    EXPECT_EQ(factors[0], static_cast<float>(popup.Window()->devicePixelRatioF()));
}

TEST(UI_TouchPopupContainer, GoesExactlyWhereItIsPutEvenPartlyOffTheScreen) {
    ShownPopup popup;
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    popup.container->SetContentSize(static_cast<float>(screen.right() - 50), 30.5f, 220.0f, 120.0f);
    EXPECT_EQ(popup.Window()->pos(), QPoint(screen.right() - 50, 30));
    const auto global =
        popup.container->GetContainer()->UI_LocalToGlobalF(kelcore::geom::PointT<float>{0, 0});
    EXPECT_EQ(global.x, static_cast<float>(screen.right() - 50));
    EXPECT_EQ(global.y, 30.5f);
}

}  // namespace
