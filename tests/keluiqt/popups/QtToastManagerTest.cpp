#include <stdexcept>

#include <kelcore/logging/CapturedLogForTesting.h>
#include <kelui/sharedui/QtToastManager.h>
#include <kelui/ui/MainTopLevelWindow.h>
#include <kelui/ui/QtWindow.h>
#include <kelui/utility/ImageProvider.h>
#include <kelui/utility/OS_ResourceManager.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <thread>

#include <gtest/gtest.h>

#include "keluiqt/popups/PopupsTestSupport.h"

namespace {

using kelui::sharedui::QtToastManager;
using kelui::sharedui::ToastLineType;
using kelui::sharedui::ToastType;
using popupstest::HostWindow;
using popupstest::WaitFor;

// A host window registered as the main window, and a Qt toast manager.
struct ToastFixture {
    ToastFixture() : window(std::make_shared<kelui::ui::QtWindow>(&host.window)) {
        kelui::ui::SetMainTopLevelWindow(window);
    }
    ~ToastFixture() { kelui::ui::SetMainTopLevelWindow({}); }

    // Shows `message` for `seconds`, counting what runs.
    void Show(const std::string& message, const std::string& label = "", double seconds = 30.0,
              std::int32_t priority = kelui::sharedui::kToastManager_DefaultPriority,
              ToastType type = ToastType::Information) {
        manager->DisplayToastMessage(
            nullptr, message, label, [this, message] { actions.push_back(message); },
            [this, message] { dismissals.push_back(message); }, type, seconds, priority,
            ToastLineType::SingleLine);
    }
    QWidget* Toast() const { return manager->GetShownToast(); }

    HostWindow host;
    std::shared_ptr<kelui::ui::QtWindow> window;
    std::shared_ptr<QtToastManager> manager = std::make_shared<QtToastManager>();
    std::vector<std::string> actions;
    std::vector<std::string> dismissals;
};

TEST(QtToastManager, ShowsTheMessageAtTheBottomCentreOfTheMainWindow) {
    ToastFixture fixture;
    fixture.Show("Copied");
    QWidget* toast = fixture.Toast();
    ASSERT_NE(toast, nullptr);
    EXPECT_TRUE(toast->isVisible());
    EXPECT_EQ(toast->window(), &fixture.host.window);
    const QRect geometry = toast->geometry();
    EXPECT_NEAR(geometry.center().x(), fixture.host.window.rect().center().x(), 1);
    EXPECT_EQ(fixture.host.window.height() - geometry.bottom() - 1, 16);
    EXPECT_TRUE(fixture.actions.empty());
    EXPECT_TRUE(fixture.dismissals.empty());
}

TEST(QtToastManager, TheMessageIsTheToastsAccessibleNameAndDescription) {
    ToastFixture fixture;
    fixture.Show("Uploading failed.");
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(fixture.Toast());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Uploading failed."));
    EXPECT_EQ(accessible->text(QAccessible::Description), QStringLiteral("Uploading failed."));
    EXPECT_EQ(accessible->role(), QAccessible::AlertMessage);
}

TEST(QtToastManager, TheActionButtonRunsTheActionAndClosesTheToast) {
    ToastFixture fixture;
    fixture.Show("Unable to create the link.", "Try again");
    QPointer<QWidget> toast = fixture.Toast();
    auto* action = toast->findChild<QPushButton*>(QStringLiteral("kelui.ToastAction"));
    ASSERT_NE(action, nullptr);
    EXPECT_EQ(action->text(), QStringLiteral("Try again"));
    EXPECT_TRUE(action->isVisible());

    QTest::mouseClick(action, Qt::LeftButton);

    EXPECT_EQ(fixture.actions, std::vector<std::string>{"Unable to create the link."});
    EXPECT_TRUE(fixture.dismissals.empty());
    EXPECT_EQ(fixture.Toast(), nullptr);
    EXPECT_TRUE(WaitFor([&] { return toast.isNull(); }));
}

TEST(QtToastManager, AToastWithoutALabelHasNoActionButton) {
    ToastFixture fixture;
    fixture.Show("Copied");
    EXPECT_EQ(fixture.Toast()->findChild<QPushButton*>(QStringLiteral("kelui.ToastAction")),
              nullptr);
}

TEST(QtToastManager, ClosesByItselfAfterItsDurationAndRunsTheDismissal) {
    ToastFixture fixture;
    QElapsedTimer clock;
    clock.start();
    fixture.Show("Copied", "", 0.2);
    QPointer<QWidget> toast = fixture.Toast();
    ASSERT_TRUE(toast);

    ASSERT_TRUE(WaitFor([&] { return !fixture.dismissals.empty(); }));

    EXPECT_GE(clock.elapsed(), 190);
    EXPECT_EQ(fixture.dismissals, std::vector<std::string>{"Copied"});
    EXPECT_TRUE(fixture.actions.empty());
    EXPECT_EQ(fixture.Toast(), nullptr);
    EXPECT_TRUE(toast.isNull() || !toast->isVisible());
}

TEST(QtToastManager, AToastThatAsksForNoDurationStaysUntilDismissed) {
    ToastFixture fixture;
    fixture.Show("Upload failed.", "Try again", 0.0);
    const auto* timer = fixture.Toast()->findChild<QTimer*>(QStringLiteral("kelui.ToastTimer"));
    ASSERT_NE(timer, nullptr);
    EXPECT_FALSE(timer->isActive());
    EXPECT_TRUE(fixture.Toast()->isVisible());
}

TEST(QtToastManager, TheDefaultDurationIsFourSeconds) {
    ToastFixture fixture;
    fixture.Show("Copied", "", kelui::sharedui::kToastManager_DefaultDurationInSeconds);
    const auto* timer = fixture.Toast()->findChild<QTimer*>(QStringLiteral("kelui.ToastTimer"));
    ASSERT_NE(timer, nullptr);
    EXPECT_TRUE(timer->isActive());
    EXPECT_EQ(timer->interval(), 4000);
}

TEST(QtToastManager, EscDismissesTheToast) {
    ToastFixture fixture;
    fixture.Show("Copied", "Undo");
    QTest::keyClick(fixture.Toast(), Qt::Key_Escape);
    EXPECT_EQ(fixture.dismissals, std::vector<std::string>{"Copied"});
    EXPECT_TRUE(fixture.actions.empty());
    EXPECT_EQ(fixture.Toast(), nullptr);
}

TEST(QtToastManager, EscOnTheFocusedActionButtonDismissesTheToast) {
    ToastFixture fixture;
    fixture.Show("Copied", "Undo");
    auto* action = fixture.Toast()->findChild<QPushButton*>(QStringLiteral("kelui.ToastAction"));
    QTest::keyClick(action, Qt::Key_Escape);
    EXPECT_EQ(fixture.dismissals, std::vector<std::string>{"Copied"});
}

TEST(QtToastManager, TheCloseButtonDismissesTheToast) {
    ToastFixture fixture;
    fixture.Show("Copied");
    auto* close = fixture.Toast()->findChild<QAbstractButton*>(QStringLiteral("kelui.ToastClose"));
    ASSERT_NE(close, nullptr);
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(close);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Close"));
    QTest::mouseClick(close, Qt::LeftButton);
    EXPECT_EQ(fixture.dismissals, std::vector<std::string>{"Copied"});
}

TEST(QtToastManager, WithoutAMainWindowItShowsAtTheBottomOfThePrimaryScreen) {
    QtToastManager manager;
    kelui::ui::SetMainTopLevelWindow({});
    manager.DisplayToastMessage(nullptr, "Copied", "", {}, {}, ToastType::Success, 30.0,
                                kelui::sharedui::kToastManager_DefaultPriority,
                                ToastLineType::SingleLine);
    QWidget* toast = manager.GetShownToast();
    ASSERT_NE(toast, nullptr);
    EXPECT_TRUE(toast->isWindow());
    EXPECT_TRUE(toast->isVisible());
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_TRUE(screen.contains(toast->geometry()));
    EXPECT_NEAR(toast->geometry().center().x(), screen.center().x(), 1);
    EXPECT_GT(toast->geometry().top(), screen.center().y());
}

TEST(QtToastManager, GoesToTheToastsOwnWindowFirst) {
    ToastFixture fixture;
    HostWindow other(QRect(420, 40, 300, 200));
    auto otherWindow = std::make_shared<kelui::ui::QtWindow>(&other.window);
    fixture.manager->DisplayToastMessage(otherWindow, "Here", "", {}, {}, ToastType::Information,
                                         30.0, kelui::sharedui::kToastManager_DefaultPriority,
                                         ToastLineType::SingleLine);
    EXPECT_EQ(fixture.Toast()->window(), &other.window);
}

TEST(QtToastManager, ALongSingleLineStaysInsideTheWindow) {
    ToastFixture fixture;
    const std::string longMessage(400, 'x');
    fixture.Show(longMessage, "Try again");
    const QRect geometry = fixture.Toast()->geometry();
    EXPECT_GE(geometry.left(), 16);
    EXPECT_LE(geometry.right(), fixture.host.window.width() - 16);
    // Screen readers still hear all of it.
    EXPECT_EQ(fixture.Toast()->accessibleName().size(), 400);
}

TEST(QtToastManager, FollowsItsWindowsSize) {
    ToastFixture fixture;
    fixture.Show("Copied");
    fixture.host.window.resize(500, 300);
    QCoreApplication::processEvents();
    EXPECT_NEAR(fixture.Toast()->geometry().center().x(), 250, 1);
    EXPECT_EQ(fixture.Toast()->geometry().bottom(), 300 - 16 - 1);
}

TEST(QtToastManager, ShowsTheIconOfItsType) {
    auto resources =
        std::make_shared<kelui::utility::OS_ResourceManager>(popupstest::IconsFolder());
    ASSERT_TRUE(resources->HasImage("S_Info_16"));
    ToastFixture fixture;
    fixture.Show("Without icon");
    const QImage without = fixture.Toast()->grab().toImage();
    kelui::utility::ImageProvider::SetThemeResourceManager(resources);
    fixture.Show("Without icon");  // the same toast again, now with its icon
    const QImage with = fixture.Toast()->grab().toImage();
    kelui::utility::ImageProvider::SetThemeResourceManager({});

    ASSERT_EQ(with.height(), without.height());
    const int middle = with.height() / 2;
    int changed = 0;
    for (int x = 12; x < 28; ++x) {
        changed += with.pixel(x, middle) != without.pixel(x, middle) ? 1 : 0;
    }
    EXPECT_GT(changed, 0);
}

TEST(QtToastManager, ANewToastReplacesTheShownOneWhichCountsAsDismissed) {
    ToastFixture fixture;
    fixture.Show("First");
    fixture.Show("Second");
    EXPECT_EQ(fixture.dismissals, std::vector<std::string>{"First"});
    ASSERT_NE(fixture.Toast(), nullptr);
    EXPECT_EQ(fixture.Toast()->accessibleName(), QStringLiteral("Second"));
    EXPECT_EQ(fixture.manager->GetWaitingCount(), 0u);
}

TEST(QtToastManager, ALowerPriorityToastWaitsForItsTurn) {
    ToastFixture fixture;
    fixture.Show("Important", "", 30.0, 80);
    fixture.Show("Later", "", 30.0, 20);
    EXPECT_EQ(fixture.Toast()->accessibleName(), QStringLiteral("Important"));
    EXPECT_EQ(fixture.manager->GetWaitingCount(), 1u);

    QTest::keyClick(fixture.Toast(), Qt::Key_Escape);

    ASSERT_NE(fixture.Toast(), nullptr);
    EXPECT_EQ(fixture.Toast()->accessibleName(), QStringLiteral("Later"));
    EXPECT_EQ(fixture.manager->GetWaitingCount(), 0u);
}

TEST(QtToastManager, AnActionMayShowAnotherToast) {
    ToastFixture fixture;
    fixture.manager->DisplayToastMessage(
        nullptr, "Failed", "Try again", [&] { fixture.Show("Failed again"); }, {}, ToastType::Error,
        30.0, kelui::sharedui::kToastManager_DefaultPriority, ToastLineType::SingleLine);
    QTest::mouseClick(fixture.Toast()->findChild<QPushButton*>(QStringLiteral("kelui.ToastAction")),
                      Qt::LeftButton);
    ASSERT_NE(fixture.Toast(), nullptr);
    EXPECT_EQ(fixture.Toast()->accessibleName(), QStringLiteral("Failed again"));
}

TEST(QtToastManager, AnActionThatThrowsIsLogged) {
    ToastFixture fixture;
    fixture.manager->DisplayToastMessage(
        nullptr, "Failed", "Try again", [] { throw std::runtime_error("no network"); }, {},
        ToastType::Error, 30.0, kelui::sharedui::kToastManager_DefaultPriority,
        ToastLineType::SingleLine);
    kelcore::logging::CapturedLogForTesting log;
    QTest::mouseClick(fixture.Toast()->findChild<QPushButton*>(QStringLiteral("kelui.ToastAction")),
                      Qt::LeftButton);
    EXPECT_EQ(fixture.Toast(), nullptr);
    ASSERT_EQ(log.Entries().size(), 1u);
    EXPECT_NE(log.Entries()[0].text.find("no network"), std::string::npos);
}

TEST(QtToastManager, AToastWhoseWindowClosesIsDismissed) {
    QtToastManager manager;
    std::vector<std::string> dismissals;
    {
        HostWindow host;
        auto window = std::make_shared<kelui::ui::QtWindow>(&host.window);
        manager.DisplayToastMessage(
            window, "Copied", "", {}, [&] { dismissals.push_back("x"); }, ToastType::Information,
            30.0, kelui::sharedui::kToastManager_DefaultPriority, ToastLineType::SingleLine);
        ASSERT_NE(manager.GetShownToast(), nullptr);
    }
    EXPECT_EQ(manager.GetShownToast(), nullptr);
    EXPECT_TRUE(WaitFor([&] { return dismissals.size() == 1; }));
}

TEST(QtToastManager, DestroyingTheManagerRemovesItsToast) {
    ToastFixture fixture;
    fixture.Show("Copied");
    QPointer<QWidget> toast = fixture.Toast();
    fixture.manager.reset();
    EXPECT_TRUE(toast.isNull());
    EXPECT_TRUE(fixture.dismissals.empty());
}

TEST(QtWindow, FollowsItsWindowsTitleOnAnyThreadAndForgetsADeletedWindow) {
    auto widget = std::make_unique<QWidget>();
    widget->setWindowTitle(QStringLiteral("Editor"));
    kelui::ui::QtWindow window(widget.get());
    EXPECT_EQ(window.GetQWidget(), widget.get());
    widget->setWindowTitle(QStringLiteral("Editor — Sequence 1"));
    kelcore::string::string fromThread;
    std::thread([&] { fromThread = window.GetTitle(); }).join();
    EXPECT_EQ(fromThread, u"Editor — Sequence 1");

    widget.reset();

    EXPECT_EQ(window.GetQWidget(), nullptr);
    EXPECT_EQ(window.GetTitle(), u"");
}

TEST(QtWindow, WrapsTheTopLevelWindowOfAChildWidget) {
    QWidget top;
    auto* child = new QWidget(&top);
    kelui::ui::QtWindow window(child);
    EXPECT_EQ(window.GetQWidget(), &top);
}

}  // namespace
