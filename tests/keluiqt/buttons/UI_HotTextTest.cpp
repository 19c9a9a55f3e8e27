#include <kelui/controls/UI_HotTextButton.h>
#include <kelui/controls/UI_HotTextURL.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>

#include <cmath>
#include <string>
#include <vector>

#include <QAbstractButton>
#include <QAccessible>
#include <QTest>

#include <gtest/gtest.h>

#include <kelcore/utility/OpenFileInDefaultApplication.h>

#include "ButtonTestSupport.h"

namespace {

using buttons_test::Grab;
using buttons_test::Make;
using buttons_test::Near;
using buttons_test::Window;
using kelui::controls::UI_HotTextButton;
using kelui::controls::UI_HotTextURL;

constexpr std::u16string_view kPath = u"/Users/editor/Projects/Spring campaign/Review/Final cut";
const QString kEllipsis(QChar(0x2026));

// Records what would have opened instead of starting a browser, for the length of a test.
class RecordingOpener {
public:
    RecordingOpener() {
        kelcore::utility::SetDefaultApplicationOpener([this](const std::string& url) {
            opened.push_back(url);
            return true;
        });
    }
    ~RecordingOpener() { kelcore::utility::SetDefaultApplicationOpener({}); }

    std::vector<std::string> opened;
};

// A node's widget as a QAbstractButton.
template <class Node>
QAbstractButton* ButtonOf(const boost::intrusive_ptr<Node>& node) {
    return qobject_cast<QAbstractButton*>(node->GetWidget());
}

// Whether some row of `image` is in `color` across most of the columns [left, right): an
// underline, which no row of glyphs is.
bool HasLineAcross(const QImage& image, QColor color, int left, int right) {
    for (int y = 0; y < image.height(); ++y) {
        int matching = 0;
        for (int x = left; x < right; ++x) {
            matching += Near(image.pixelColor(x, y), color, 40) ? 1 : 0;
        }
        if (matching * 10 >= (right - left) * 9) {
            return true;
        }
    }
    return false;
}

TEST(UI_HotTextButton, PathTruncationKeepsBothEndsOfAPath) {
    Window window;
    auto button = Make<UI_HotTextButton>();
    button->SetTextTruncation(3);
    button->SetText(kPath);
    window.Add(button, {10.0f, 10.0f, 160.0f, 20.0f});
    const QString shown = kelui::ui::ToQString(button->GetDisplayedText());
    EXPECT_LT(shown.size(), static_cast<qsizetype>(kPath.size()));
    EXPECT_TRUE(shown.startsWith(QStringLiteral("/U"))) << shown.toStdString();
    EXPECT_TRUE(shown.endsWith(QStringLiteral("cut"))) << shown.toStdString();
    EXPECT_TRUE(shown.contains(kEllipsis)) << shown.toStdString();
    EXPECT_FALSE(shown.endsWith(kEllipsis));
    // What screen readers hear is the whole path.
    EXPECT_EQ(QAccessible::queryAccessibleInterface(button->GetWidget())->text(QAccessible::Name),
              kelui::ui::ToQString(kPath));
}

TEST(UI_HotTextButton, EndTruncationCutsTheEndAndAWideButtonShowsEverything) {
    Window window(640.0f);
    auto button = Make<UI_HotTextButton>();
    button->SetTextTruncation(2);
    button->SetText(kPath);
    window.Add(button, {10.0f, 10.0f, 160.0f, 20.0f});
    const QString shown = kelui::ui::ToQString(button->GetDisplayedText());
    EXPECT_TRUE(shown.startsWith(QStringLiteral("/Users"))) << shown.toStdString();
    EXPECT_TRUE(shown.endsWith(kEllipsis)) << shown.toStdString();
    button->UI_SetLocalRectF({10.0f, 10.0f, 620.0f, 20.0f});
    EXPECT_EQ(kelui::ui::ToQString(button->GetDisplayedText()), kelui::ui::ToQString(kPath));
}

TEST(UI_HotTextButton, DrawsItsTextInTheLinkColourWithoutABox) {
    Window window;
    auto button = Make<UI_HotTextButton>();
    button->SetText(u"Select location");
    window.Add(button, {10.0f, 10.0f, 200.0f, 20.0f});
    const QImage image = Grab(button->GetWidget());
    const QColor link = kelui::ui::ToQColor(kelui::skins::GetApplicationTheme().link);
    EXPECT_TRUE(buttons_test::BoundsOf(image, link).isValid());
    const QColor panel = QApplication::palette().color(QPalette::Window);
    EXPECT_EQ(image.pixelColor(199, 10), panel);
    EXPECT_EQ(image.pixelColor(0, 0), panel);
}

TEST(UI_HotTextButton, UnderlinesItsTextOnlyWhileHovered) {
    Window window;
    auto button = Make<UI_HotTextButton>();
    button->SetText(u"Select location");
    auto measuring =
        kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier()->GetMeasuringLimner();
    const auto size = button->UI_GetRecommendedSize(*measuring);
    window.Add(button, {10.0f, 10.0f, size.x, 20.0f});
    const QColor link = kelui::ui::ToQColor(kelui::skins::GetApplicationTheme().link);
    const int right = static_cast<int>(size.x) - 3;
    EXPECT_FALSE(HasLineAcross(Grab(button->GetWidget()), link, 3, right));
    QTest::mouseMove(button->GetWidget(), QPoint(5, 10));
    QTRY_VERIFY(HasLineAcross(Grab(button->GetWidget()), link, 3, right));
    EXPECT_EQ(button->GetWidget()->cursor().shape(), Qt::PointingHandCursor);
}

TEST(UI_HotTextButton, OnlyItsTextIsClickable) {
    Window window;
    auto button = Make<UI_HotTextButton>();
    int clicks = 0;
    button->NotifyWhenChanged([&clicks] { ++clicks; });
    button->SetText(u"Select");
    window.Add(button, {10.0f, 10.0f, 300.0f, 20.0f});
    QTest::mouseClick(ButtonOf(button), Qt::LeftButton, {}, QPoint(280, 10));
    EXPECT_EQ(clicks, 0);
    QTest::mouseClick(ButtonOf(button), Qt::LeftButton, {}, QPoint(6, 10));
    EXPECT_EQ(clicks, 1);
}

TEST(UI_HotTextButton, RecommendsItsTextOnOneLineWithRoomForTheFocusRing) {
    auto button = Make<UI_HotTextButton>();
    button->SetText(u"Select location");
    auto supplier = kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier();
    const auto measured = supplier->GetFont({})->MeasureText(u"Select location");
    const auto size = button->UI_GetRecommendedSize(*supplier->GetMeasuringLimner());
    EXPECT_EQ(size.x, std::ceil(measured.x) + 4.0f);
    EXPECT_EQ(size.y, std::ceil(measured.y));
}

TEST(UI_HotTextButton, SpaceActivatesItWhenFocused) {
    Window window;
    ASSERT_TRUE(window.IsActive());
    auto button = Make<UI_HotTextButton>();
    int clicks = 0;
    button->NotifyWhenChanged([&clicks] { ++clicks; });
    button->SetText(u"Select");
    window.Add(button, {10.0f, 10.0f, 100.0f, 20.0f});
    button->GetWidget()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(button->GetWidget(), Qt::Key_Space);
    EXPECT_EQ(clicks, 1);
}

TEST(UI_HotTextURL, AClickOpensItsURLThroughTheOpenerAndThenNotifies) {
    RecordingOpener opener;
    Window window;
    auto link = Make<UI_HotTextURL>();
    link->SetURL("https://review.example/terms");
    link->SetText(u"Terms of Service");
    std::size_t openedAtNotification = 99;
    int notifications = 0;
    link->NotifyWhenChanged([&] {
        openedAtNotification = opener.opened.size();
        ++notifications;
    });
    window.Add(link, {10.0f, 10.0f, 150.0f, 20.0f});
    QTest::mouseClick(ButtonOf(link), Qt::LeftButton, {}, QPoint(10, 10));
    ASSERT_EQ(opener.opened.size(), 1u);
    EXPECT_EQ(opener.opened[0], "https://review.example/terms");
    EXPECT_EQ(notifications, 1);
    EXPECT_EQ(openedAtNotification, 1u);
    EXPECT_EQ(link->GetURL(), "https://review.example/terms");
}

TEST(UI_HotTextURL, EnterAndSpaceOpenItWhenFocused) {
    RecordingOpener opener;
    Window window;
    ASSERT_TRUE(window.IsActive());
    auto link = Make<UI_HotTextURL>();
    link->SetURL("https://review.example/privacy");
    link->SetText(u"Privacy Policy");
    window.Add(link, {10.0f, 10.0f, 150.0f, 20.0f});
    link->GetWidget()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(link->GetWidget(), Qt::Key_Return);
    QTest::keyClick(link->GetWidget(), Qt::Key_Space);
    EXPECT_EQ(opener.opened, (std::vector<std::string>{"https://review.example/privacy",
                                                       "https://review.example/privacy"}));
}

TEST(UI_HotTextURL, ADisabledLinkOpensNothing) {
    RecordingOpener opener;
    Window window;
    auto link = Make<UI_HotTextURL>();
    link->SetURL("https://review.example/terms");
    link->SetText(u"Terms of Service");
    int notifications = 0;
    link->NotifyWhenChanged([&notifications] { ++notifications; });
    window.Add(link, {10.0f, 10.0f, 150.0f, 20.0f});
    link->SetDisabled(true);
    QTest::mouseClick(ButtonOf(link), Qt::LeftButton, {}, QPoint(10, 10));
    link->Click();
    EXPECT_TRUE(opener.opened.empty());
    EXPECT_EQ(notifications, 0);
}

TEST(UI_HotTextURL, AnEmptyAddressOpensNothingButStillNotifies) {
    RecordingOpener opener;
    auto link = Make<UI_HotTextURL>();
    link->SetText(u"Review link");
    int notifications = 0;
    link->NotifyWhenChanged([&notifications] { ++notifications; });
    link->Click();
    EXPECT_TRUE(opener.opened.empty());
    EXPECT_EQ(notifications, 1);
}

TEST(UI_HotTextURL, ScreenReadersHearALinkNamedByItsText) {
    RecordingOpener opener;
    auto link = Make<UI_HotTextURL>();
    link->SetURL("https://review.example/terms");
    link->SetText(u"Terms of Service");
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(link->GetWidget());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::Link);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Terms of Service"));
    EXPECT_TRUE(accessible->state().focusable);
    QAccessibleActionInterface* actions = accessible->actionInterface();
    ASSERT_NE(actions, nullptr);
    ASSERT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(opener.opened, std::vector<std::string>{"https://review.example/terms"});
}

TEST(UI_HotTextURL, ShowsAPointingHandOverItsText) {
    Window window;
    auto link = Make<UI_HotTextURL>();
    link->SetText(u"Terms of Service");
    window.Add(link, {10.0f, 10.0f, 300.0f, 20.0f});
    QTest::mouseMove(link->GetWidget(), QPoint(8, 10));
    QTRY_COMPARE(link->GetWidget()->cursor().shape(), Qt::PointingHandCursor);
    QTest::mouseMove(link->GetWidget(), QPoint(290, 10));
    QTRY_COMPARE(link->GetWidget()->cursor().shape(), Qt::ArrowCursor);
}

TEST(UI_HotTextURL, EndTruncationShortensALongAddress) {
    Window window;
    auto link = Make<UI_HotTextURL>();
    link->SetTextTruncation(2);
    link->SetText(u"https://review.example/r/3f9a2c71-8d44-4b0e-9f1d-2a7c5e6b8d90");
    window.Add(link, {10.0f, 10.0f, 196.0f, 20.0f});
    const QString shown = kelui::ui::ToQString(link->GetDisplayedText());
    EXPECT_TRUE(shown.startsWith(QStringLiteral("https://")));
    EXPECT_TRUE(shown.endsWith(kEllipsis));
}

TEST(UI_HotTextURL, FocusPolicyIsStrong) {
    auto link = Make<UI_HotTextURL>();
    EXPECT_EQ(link->GetWidget()->focusPolicy(), Qt::StrongFocus);
}

}  // namespace
