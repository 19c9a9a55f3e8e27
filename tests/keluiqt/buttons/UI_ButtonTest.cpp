#include <kelui/controls/UI_TextButton.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>

#include <cmath>

#include <QAbstractButton>
#include <QAccessible>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include "ButtonTestSupport.h"

namespace {

using buttons_test::Grab;
using buttons_test::Make;
using buttons_test::Near;
using buttons_test::Window;
using kelui::controls::UI_Button;
using kelui::controls::UI_TextButton;

constexpr limner::ColorRGBA kBlue{38.0f / 255.0f, 127.0f / 255.0f, 235.0f / 255.0f, 1.0f};
constexpr limner::ColorRGBA kDarkBlue{20.0f / 255.0f, 90.0f / 255.0f, 180.0f / 255.0f, 1.0f};
constexpr limner::ColorRGBA kWhite{1.0f, 1.0f, 1.0f, 1.0f};

// A text button in a shown, active window, counting its notifications.
struct Fixture {
    explicit Fixture(std::u16string_view text = u"Share") : button(Make<UI_TextButton>()) {
        button->SetText(text);
        button->NotifyWhenChanged([this] { ++clicks; });
        window.Add(button, {20.0f, 20.0f, 100.0f, 24.0f});
    }
    QAbstractButton* Widget() const { return qobject_cast<QAbstractButton*>(button->GetWidget()); }
    QPoint Centre() const { return Widget()->rect().center(); }

    Window window;
    boost::intrusive_ptr<UI_TextButton> button;
    int clicks = 0;
};

TEST(UI_Button, AMouseClickNotifiesExactlyOnce) {
    Fixture fixture;
    QTest::mouseClick(fixture.Widget(), Qt::LeftButton, {}, fixture.Centre());
    EXPECT_EQ(fixture.clicks, 1);
}

TEST(UI_Button, AReleaseOutsideTheButtonDoesNotNotify) {
    Fixture fixture;
    QTest::mousePress(fixture.Widget(), Qt::LeftButton, {}, fixture.Centre());
    QTest::mouseRelease(fixture.Widget(), Qt::LeftButton, {}, QPoint(150, 12));
    EXPECT_EQ(fixture.clicks, 0);
}

TEST(UI_Button, ADisabledButtonIgnoresClicksKeysAndClick) {
    Fixture fixture;
    fixture.button->SetDisabled(true);
    QTest::mouseClick(fixture.Widget(), Qt::LeftButton, {}, fixture.Centre());
    QTest::keyClick(fixture.Widget(), Qt::Key_Space);
    QTest::keyClick(fixture.Widget(), Qt::Key_Return);
    fixture.button->Click();
    EXPECT_EQ(fixture.clicks, 0);
}

TEST(UI_Button, SpaceActivatesTheFocusedButtonOnce) {
    Fixture fixture;
    ASSERT_TRUE(fixture.window.IsActive());
    fixture.Widget()->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(fixture.Widget()->hasFocus());
    QTest::keyClick(fixture.Widget(), Qt::Key_Space);
    EXPECT_EQ(fixture.clicks, 1);
}

TEST(UI_Button, EnterAndReturnActivateTheFocusedButtonOnceEach) {
    Fixture fixture;
    ASSERT_TRUE(fixture.window.IsActive());
    fixture.Widget()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(fixture.Widget(), Qt::Key_Return);
    EXPECT_EQ(fixture.clicks, 1);
    QTest::keyClick(fixture.Widget(), Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(fixture.clicks, 2);
}

TEST(UI_Button, ClickNotifiesOnceAsTheUserWould) {
    Fixture fixture;
    QSignalSpy spy(fixture.Widget(), &QAbstractButton::clicked);
    fixture.button->Click();
    EXPECT_EQ(fixture.clicks, 1);
    EXPECT_EQ(spy.count(), 1);
}

TEST(UI_Button, TabMovesFocusBetweenTwoButtonsInAParent) {
    Window window;
    ASSERT_TRUE(window.IsActive());
    auto first = Make<UI_TextButton>();
    auto second = Make<UI_TextButton>();
    first->SetText(u"Cancel");
    second->SetText(u"Share");
    window.Add(first, {20.0f, 20.0f, 80.0f, 24.0f});
    window.Add(second, {110.0f, 20.0f, 80.0f, 24.0f});
    EXPECT_EQ(first->GetWidget()->focusPolicy(), Qt::StrongFocus);

    first->GetWidget()->setFocus(Qt::OtherFocusReason);
    ASSERT_TRUE(first->GetWidget()->hasFocus());
    QTest::keyClick(first->GetWidget(), Qt::Key_Tab);
    EXPECT_TRUE(second->GetWidget()->hasFocus());
    QTest::keyClick(second->GetWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(first->GetWidget()->hasFocus());
}

TEST(UI_Button, TheTextIsTheQtButtonsTextAndItsAccessibleName) {
    Fixture fixture(u"Sign in");
    EXPECT_EQ(fixture.Widget()->text(), QStringLiteral("Sign in"));
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(fixture.Widget());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Sign in"));
    EXPECT_EQ(accessible->role(), QAccessible::Button);

    fixture.button->SetText(u"Sign out", false);
    EXPECT_EQ(fixture.Widget()->text(), QStringLiteral("Sign out"));
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Sign out"));
}

TEST(UI_Button, AnAmpersandStaysPlainTextAndMakesNoMnemonic) {
    Fixture fixture(u"Save & Close");
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(fixture.Widget());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Save & Close"));
    EXPECT_TRUE(fixture.Widget()->shortcut().isEmpty());
}

TEST(UI_Button, ABoldStyleNameReachesTheWidgetsFont) {
    Fixture fixture;
    EXPECT_FALSE(fixture.Widget()->font().bold());
    fixture.button->SetFontStyleName("Bold");
    EXPECT_TRUE(fixture.Widget()->font().bold());
    fixture.button->SetFontStyleName("Regular");
    EXPECT_FALSE(fixture.Widget()->font().bold());
}

TEST(UI_Button, KeepsItsSettings) {
    auto button = Make<UI_TextButton>();
    EXPECT_EQ(button->GetButtonChromeType(), UI_Button::kChromeStandard);
    button->SetButtonChromeType(9);
    EXPECT_EQ(button->GetButtonChromeType(), 9u);
    button->SetButtonChromeType(10);
    EXPECT_EQ(button->GetButtonChromeType(), 10u);
    button->SetButtonChromeType(4);
    EXPECT_EQ(button->GetButtonChromeType(), UI_Button::kChromeStandard);

    EXPECT_FALSE(button->GetDisplayBorderNever());
    EXPECT_FALSE(button->GetDisplayBorderAlways());
    EXPECT_FALSE(button->GetDisplayContainerAlways());
    EXPECT_FALSE(button->GetSpringLoaded());
    EXPECT_FALSE(button->GetCommitAppearance());
    button->SetDisplayBorderNever(true);
    button->SetDisplayBorderAlways(true);
    button->SetDisplayContainerAlways(true);
    button->SetSpringLoaded(true);
    button->SetCommitAppearance(true);
    EXPECT_TRUE(button->GetDisplayBorderNever());
    EXPECT_TRUE(button->GetDisplayBorderAlways());
    EXPECT_TRUE(button->GetDisplayContainerAlways());
    EXPECT_TRUE(button->GetSpringLoaded());
    EXPECT_TRUE(button->GetCommitAppearance());
}

TEST(UI_Button, StoresCustomThemeColours) {
    auto button = Make<UI_TextButton>();
    EXPECT_EQ(button->GetCustomThemeColor(UI_Button::kBackgroundColorID), std::nullopt);
    button->SetCustomThemeColor(5000017, kBlue);
    button->SetCustomThemeColor(5000015, kWhite);
    EXPECT_EQ(button->GetCustomThemeColor(5000017), kBlue);
    EXPECT_EQ(button->GetCustomThemeColor(5000015), kWhite);
    EXPECT_EQ(button->GetCustomThemeColor(5000016), std::nullopt);
}

TEST(UI_Button, DrawsItsBackgroundInTheCustomColour) {
    Fixture fixture;
    fixture.button->SetCustomThemeColor(UI_Button::kBackgroundColorID, kBlue);
    fixture.button->SetCustomThemeColor(UI_Button::kActiveBackgroundColorID, kDarkBlue);
    fixture.button->SetCustomThemeColor(UI_Button::kTextColorID, kWhite);
    fixture.button->SetDisplayBorderNever(true);
    const QImage image = Grab(fixture.Widget());
    EXPECT_EQ(image.pixelColor(5, 12), QColor(38, 127, 235));
    EXPECT_EQ(image.pixelColor(fixture.Widget()->width() - 5, 3), QColor(38, 127, 235));
    // No border: the edge is the fill too, away from the rounded corners.
    EXPECT_EQ(image.pixelColor(0, 12), QColor(38, 127, 235));
}

TEST(UI_Button, DrawsItsTextInTheCustomTextColour) {
    Fixture fixture;
    fixture.button->SetCustomThemeColor(UI_Button::kBackgroundColorID, kBlue);
    fixture.button->SetCustomThemeColor(UI_Button::kTextColorID, kWhite);
    const QImage image = Grab(fixture.Widget());
    EXPECT_TRUE(buttons_test::BoundsOf(image, Qt::white).isValid());
    fixture.button->SetCustomThemeColor(UI_Button::kTextColorID,
                                        limner::ColorRGBA{0.0f, 0.0f, 0.0f, 1.0f});
    EXPECT_FALSE(buttons_test::BoundsOf(Grab(fixture.Widget()), Qt::white).isValid());
}

TEST(UI_Button, DrawsTheActiveCustomColourWhileHovered) {
    Fixture fixture;
    fixture.button->SetCustomThemeColor(UI_Button::kBackgroundColorID, kBlue);
    fixture.button->SetCustomThemeColor(UI_Button::kActiveBackgroundColorID, kDarkBlue);
    QTest::mouseMove(fixture.Widget(), fixture.Centre());
    QTRY_COMPARE(Grab(fixture.Widget()).pixelColor(5, 12), QColor(20, 90, 180));
    QTest::mouseMove(fixture.window.GetWidget(), QPoint(300, 100));
    QTRY_COMPARE(Grab(fixture.Widget()).pixelColor(5, 12), QColor(38, 127, 235));
}

TEST(UI_Button, TheCommitAppearanceFillsWithTheAccent) {
    Fixture fixture;
    fixture.button->SetCommitAppearance(true);
    const limner::ColorRGBA accent = kelui::skins::GetApplicationTheme().accent;
    EXPECT_TRUE(Near(Grab(fixture.Widget()).pixelColor(5, 12), kelui::ui::ToQColor(accent)));
}

TEST(UI_Button, AQuietButtonShowsItsBorderOnlyWhileHovered) {
    Fixture fixture;
    fixture.button->SetButtonChromeType(UI_Button::kChromeQuiet);
    const QColor window = QApplication::palette().color(QPalette::Window);
    EXPECT_EQ(Grab(fixture.Widget()).pixelColor(0, 12), window);
    EXPECT_EQ(Grab(fixture.Widget()).pixelColor(5, 12), window);
    QTest::mouseMove(fixture.Widget(), fixture.Centre());
    QTRY_VERIFY(Grab(fixture.Widget()).pixelColor(0, 12) != window);
    EXPECT_EQ(Grab(fixture.Widget()).pixelColor(5, 12), window) << "a border, not a box";
}

TEST(UI_Button, AQuietButtonThatAlwaysShowsItsContainerDrawsItsBoxAtRest) {
    Fixture fixture;
    fixture.button->SetButtonChromeType(UI_Button::kChromeQuiet);
    fixture.button->SetDisplayContainerAlways(true);
    fixture.button->SetDisplayBorderAlways(true);
    const QImage image = Grab(fixture.Widget());
    const QColor window = QApplication::palette().color(QPalette::Window);
    EXPECT_NE(image.pixelColor(5, 12), window);
    EXPECT_NE(image.pixelColor(0, 12), window);
    EXPECT_NE(image.pixelColor(0, 12), image.pixelColor(5, 12));
}

TEST(UI_Button, KeyboardFocusDrawsARingAndAClickDrawsNone) {
    Fixture fixture;
    ASSERT_TRUE(fixture.window.IsActive());
    const QColor accent = kelui::ui::ToQColor(kelui::skins::GetApplicationTheme().accent);
    QTest::mouseClick(fixture.Widget(), Qt::LeftButton, {}, fixture.Centre());
    ASSERT_TRUE(fixture.Widget()->hasFocus());
    EXPECT_FALSE(Near(Grab(fixture.Widget()).pixelColor(1, 12), accent));

    fixture.Widget()->clearFocus();
    fixture.Widget()->setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(Near(Grab(fixture.Widget()).pixelColor(1, 12), accent));
}

TEST(UI_Button, RecommendsItsTextWithPaddingAndAtLeast24Pixels) {
    auto button = Make<UI_TextButton>();
    button->SetText(u"Update shared content");
    auto supplier = kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier();
    auto measuring = supplier->GetMeasuringLimner();
    const auto font = supplier->GetFont(button->GetFontDescription());
    const auto size = button->UI_GetRecommendedSize(*measuring);
    EXPECT_EQ(size.x, std::ceil(font->MeasureText(u"Update shared content").x) + 24.0f);
    EXPECT_EQ(size.y, std::max(24.0f, std::ceil(font->GetLineHeight()) + 8.0f));

    button->SetFontSize(30.0f);
    const auto large = button->UI_GetRecommendedSize(*measuring);
    EXPECT_GT(large.y, 24.0f);
    EXPECT_EQ(large.y,
              std::ceil(supplier->GetFont(button->GetFontDescription())->GetLineHeight()) + 8.0f);
}

TEST(UI_Button, ADisabledButtonDrawsItsTextInTheDisabledColour) {
    Fixture fixture(u"WWWW");
    const QColor text = kelui::ui::ToQColor(kelui::skins::GetApplicationTheme().text);
    const QColor disabled = kelui::ui::ToQColor(kelui::skins::GetApplicationTheme().disabledText);
    ASSERT_NE(text, disabled);
    EXPECT_TRUE(buttons_test::BoundsOf(Grab(fixture.Widget()), text).isValid());
    fixture.button->SetDisabled(true);
    const QImage image = Grab(fixture.Widget());
    EXPECT_FALSE(buttons_test::BoundsOf(image, text).isValid());
}

TEST(UI_Button, AnOwnerMayDropTheButtonFromInsideItsClick) {
    struct Watched : UI_TextButton {
        explicit Watched(bool& destroyed) : destroyed(destroyed) {}
        ~Watched() override { destroyed = true; }
        bool& destroyed;
    };
    Window window;
    bool destroyed = false;
    boost::intrusive_ptr<Watched> button(new Watched(destroyed));
    button->SetText(u"Share");
    window.Add(button, {20.0f, 20.0f, 100.0f, 24.0f});
    kelui::ui::UI_Node* parent = button->UI_GetParentNode();
    int clicks = 0;
    // The screen that held the button goes away as the click is handled.
    button->NotifyWhenChanged([&clicks, parent, raw = button.get()] {
        ++clicks;
        parent->ChildRemove(boost::intrusive_ptr<kelui::ui::UI_Node>(raw));
    });
    QPointer<QWidget> widget = button->GetWidget();
    button.reset();

    QTest::mouseClick(widget, Qt::LeftButton, {}, QPoint(50, 12));
    EXPECT_EQ(clicks, 1);
    // Not under the click that Qt was still delivering, but as soon as the loop runs.
    EXPECT_FALSE(widget.isNull());
    QTRY_VERIFY(destroyed);
    EXPECT_TRUE(widget.isNull());
}

}  // namespace
