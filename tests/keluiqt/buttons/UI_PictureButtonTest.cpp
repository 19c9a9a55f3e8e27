#include <kelui/controls/UI_PictureButton.h>
#include <kelui/controls/UI_PictureTextButton.h>
#include <kelui/ui/UI_NodeManager.h>

#include <cmath>

#include <QAbstractButton>
#include <QAccessible>
#include <QTest>

#include <gtest/gtest.h>

#include "ButtonTestSupport.h"

namespace {

using buttons_test::FlatImage;
using buttons_test::Grab;
using buttons_test::Make;
using buttons_test::SupplyOf;
using buttons_test::Window;
using kelui::controls::UI_PictureButton;
using kelui::controls::UI_PictureTextButton;

const QColor kRed(220, 30, 30);

boost::intrusive_ptr<FlatImage> RedSquare(float side) {
    return boost::intrusive_ptr<FlatImage>(new FlatImage(side, side, kRed));
}

std::unique_ptr<limner::Limner> Measuring() {
    return kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier()->GetMeasuringLimner();
}

TEST(UI_PictureButton, RecommendsItsPictureWithFourPixelsOnEachSide) {
    auto button = Make<UI_PictureButton>();
    button->SetImageSupplyFunction(SupplyOf(RedSquare(18.0f)));
    const auto size = button->UI_GetRecommendedSize(*Measuring());
    EXPECT_EQ(size.x, 26.0f);
    EXPECT_EQ(size.y, 26.0f);
}

TEST(UI_PictureButton, DrawsOnlyItsPictureCentred) {
    Window window;
    auto button = Make<UI_PictureButton>();
    button->SetButtonChromeType(10);
    button->SetText(u"Settings");
    button->SetImageSupplyFunction(SupplyOf(RedSquare(18.0f)));
    window.Add(button, {10.0f, 10.0f, 26.0f, 26.0f});
    const QImage image = Grab(button->GetWidget());
    EXPECT_EQ(buttons_test::BoundsOf(image, kRed), QRect(4, 4, 18, 18));
    // Nothing but the picture: the text is for screen readers and the tooltip.
    const QColor panel = QApplication::palette().color(QPalette::Window);
    EXPECT_EQ(image.pixelColor(2, 13), panel);
    EXPECT_EQ(image.pixelColor(24, 13), panel);
}

TEST(UI_PictureButton, TheTextIsTheAccessibleNameAndTheTooltip) {
    auto button = Make<UI_PictureButton>();
    button->SetText(u"Settings");
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(button->GetWidget());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Settings"));
    EXPECT_EQ(button->UI_GetToolTip(), u"Settings");
    button->SetText(u"Account settings");
    EXPECT_EQ(button->UI_GetToolTip(), u"Account settings");
}

TEST(UI_PictureButton, KeepsATooltipThatItsOwnerSet) {
    auto button = Make<UI_PictureButton>();
    button->SetText(u"Settings");
    button->UI_SetToolTip(u"Opens the project's settings in the browser", 200.0f);
    button->SetText(u"Project settings");
    EXPECT_EQ(button->UI_GetToolTip(), u"Opens the project's settings in the browser");
}

TEST(UI_PictureButton, AsksForItsPictureOnceAndAgainWhenTheSupplyChanges) {
    Window window;
    auto requests = std::make_shared<int>(0);
    auto button = Make<UI_PictureButton>();
    button->SetImageSupplyFunction(SupplyOf(RedSquare(16.0f), requests));
    EXPECT_EQ(*requests, 0) << "asked only when needed";
    window.Add(button, {10.0f, 10.0f, 24.0f, 24.0f});
    button->UI_GetRecommendedSize(*Measuring());
    Grab(button->GetWidget());
    Grab(button->GetWidget());
    EXPECT_EQ(*requests, 1);

    const QColor green(30, 180, 60);
    auto greenRequests = std::make_shared<int>(0);
    button->SetImageSupplyFunction(SupplyOf(
        boost::intrusive_ptr<FlatImage>(new FlatImage(16.0f, 16.0f, green)), greenRequests));
    const QImage image = Grab(button->GetWidget());
    EXPECT_EQ(*greenRequests, 1);
    EXPECT_TRUE(buttons_test::BoundsOf(image, green).isValid());
    EXPECT_FALSE(buttons_test::BoundsOf(image, kRed).isValid());
}

TEST(UI_PictureButton, ClickingNotifies) {
    Window window;
    auto button = Make<UI_PictureButton>();
    int clicks = 0;
    button->NotifyWhenChanged([&clicks] { ++clicks; });
    button->SetImageSupplyFunction(SupplyOf(RedSquare(16.0f)));
    window.Add(button, {10.0f, 10.0f, 24.0f, 24.0f});
    QTest::mouseClick(button->GetWidget(), Qt::LeftButton, {}, QPoint(12, 12));
    EXPECT_EQ(clicks, 1);
}

TEST(UI_PictureTextButton, RecommendsPaddingPictureGapAndText) {
    auto button = Make<UI_PictureTextButton>();
    button->SetText(u"Copy link");
    button->SetImageSupplyFunction(SupplyOf(RedSquare(16.0f)));
    auto measuring = Measuring();
    const float text = std::ceil(measuring->MeasureText(u"Copy link", {}).x);
    const auto size = button->UI_GetRecommendedSize(*measuring);
    EXPECT_EQ(size.x, 12.0f + 16.0f + 6.0f + text + 12.0f);
    EXPECT_EQ(size.y, 24.0f);
}

TEST(UI_PictureTextButton, PutsThePictureLeftAndTheTextSixPixelsAfterItBothCentred) {
    Window window;
    auto button = Make<UI_PictureTextButton>();
    button->SetText(u"Copy link");
    button->SetImageSupplyFunction(SupplyOf(RedSquare(16.0f)));
    const auto size = button->UI_GetRecommendedSize(*Measuring());
    window.Add(button, {10.0f, 10.0f, size.x, size.y});
    const QImage image = Grab(button->GetWidget());

    EXPECT_EQ(buttons_test::BoundsOf(image, kRed), QRect(12, 4, 16, 16));
    const QColor fill = image.pixelColor(5, 12);
    // Inside the border, right of the picture.
    const auto ink = buttons_test::InkColumns(image.copy(0, 2, image.width() - 2, 20), fill, 28);
    ASSERT_TRUE(ink.has_value());
    EXPECT_GE(ink->first, 12 + 16 + 6);
    EXPECT_LE(ink->first, 12 + 16 + 6 + 2);
    EXPECT_LE(ink->second, image.width() - 12);
}

TEST(UI_PictureTextButton, WithoutAPictureItIsATextButton) {
    auto button = Make<UI_PictureTextButton>();
    button->SetText(u"Copy link");
    auto measuring = Measuring();
    const float text = std::ceil(measuring->MeasureText(u"Copy link", {}).x);
    EXPECT_EQ(button->UI_GetRecommendedSize(*measuring).x, text + 24.0f);
}

}  // namespace
