#include <kelui/utility/SvgImage.h>

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <kelui/skins/Theme.h>
#include <kelui/ui/QtConversions.h>

#include "keluiqt/textimg/TextImgTestSupport.h"

namespace {

using kelui::skins::GetApplicationTheme;
using kelui::utility::SvgImage;

// A black 8-unit square in the middle of a 16-unit icon: its edges fall on whole pixels at
// ratio 1 and 2, so a crisp rendering has no partly covered pixel along them.
constexpr char kSquareSvg[] =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16" viewBox="0 0 16 16">)"
    R"(<rect x="4" y="4" width="8" height="8" fill="#000000"/></svg>)";
// A one-unit line on half-unit coordinates, as the toolkit's icons draw their outlines.
constexpr char kOutlineSvg[] =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16" viewBox="0 0 16 16">)"
    R"(<path d="M5.5 2V14" stroke="currentColor" stroke-width="1" fill="none"/></svg>)";
constexpr char kBlueSvg[] =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16" viewBox="0 0 16 16">)"
    R"(<rect x="0" y="0" width="16" height="16" fill="#267FEB"/></svg>)";

/// `image` painted into the whole of a transparent square of `logicalSize` at `ratio`.
QImage Render(const SvgImage& image, int logicalSize, qreal ratio,
              const kelui::skins::Theme& theme) {
    const int pixels = static_cast<int>(logicalSize * ratio);
    QImage target(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    target.setDevicePixelRatio(ratio);
    target.fill(Qt::transparent);
    QPainter painter(&target);
    // As the toolkit's limner paints: a resampled rendering would show as blurred edges.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    image.Paint(painter, QRectF(0.0, 0.0, logicalSize, logicalSize), theme);
    painter.end();
    return target.convertToFormat(QImage::Format_ARGB32);
}

int Alpha(const QImage& image, int x, int y) {
    return qAlpha(image.pixel(x, y));
}

TEST(SvgImage, TakesItsSizeFromTheWidthAndHeight) {
    const auto image = SvgImage::FromData(kSquareSvg);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->GetWidth(), 16.0f);
    EXPECT_EQ(image->GetHeight(), 16.0f);
}

TEST(SvgImage, TakesItsSizeFromTheViewBoxWithoutWidthAndHeight) {
    const auto image =
        SvgImage::FromData(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 12">)"
                           R"(<rect width="24" height="12" fill="#000"/></svg>)");
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->GetWidth(), 24.0f);
    EXPECT_EQ(image->GetHeight(), 12.0f);
}

TEST(SvgImage, RefusesWhatIsNotSvg) {
    EXPECT_EQ(SvgImage::FromData("not a picture"), nullptr);
    EXPECT_EQ(SvgImage::FromData(""), nullptr);
    EXPECT_EQ(SvgImage::FromFile("/nonexistent/S_Missing_16.svg"), nullptr);
}

TEST(SvgImage, ReadsAFile) {
    const auto image = SvgImage::FromFile(textimg_test::ArtworkFolder() / "S_Copy_16.svg");
    ASSERT_NE(image, nullptr);
    EXPECT_GT(image->GetWidth(), 0.0f);
    EXPECT_GT(image->GetHeight(), 0.0f);
}

TEST(SvgImage, ArtworkInCurrentColorIsMonochrome) {
    EXPECT_TRUE(SvgImage::FromData(kOutlineSvg)->IsMonochrome());
    EXPECT_FALSE(SvgImage::FromData(kBlueSvg)->IsMonochrome());
}

TEST(SvgImage, IsCrispAtRatioOne) {
    const QImage rendered = Render(*SvgImage::FromData(kSquareSvg), 16, 1.0, GetApplicationTheme());
    EXPECT_EQ(Alpha(rendered, 4, 4), 255);
    EXPECT_EQ(Alpha(rendered, 11, 11), 255);
    EXPECT_EQ(Alpha(rendered, 3, 3), 0);
    EXPECT_EQ(Alpha(rendered, 12, 12), 0);
}

TEST(SvgImage, IsCrispAtRatioTwo) {
    // Rendered at 16 and scaled up, the square's edge pixels would be half covered.
    const QImage rendered = Render(*SvgImage::FromData(kSquareSvg), 16, 2.0, GetApplicationTheme());
    ASSERT_EQ(rendered.size(), QSize(32, 32));
    EXPECT_EQ(Alpha(rendered, 8, 8), 255);
    EXPECT_EQ(Alpha(rendered, 23, 23), 255);
    EXPECT_EQ(Alpha(rendered, 7, 7), 0);
    EXPECT_EQ(Alpha(rendered, 24, 24), 0);
}

TEST(SvgImage, AnOutlineOfOneUnitCoversTwoWholeDevicePixelsAtRatioTwo) {
    const QImage rendered =
        Render(*SvgImage::FromData(kOutlineSvg), 16, 2.0, GetApplicationTheme());
    // The line runs from x = 5 to 6 units: device columns 10 and 11.
    EXPECT_EQ(Alpha(rendered, 10, 16), 255);
    EXPECT_EQ(Alpha(rendered, 11, 16), 255);
    EXPECT_EQ(Alpha(rendered, 9, 16), 0);
    EXPECT_EQ(Alpha(rendered, 12, 16), 0);
}

TEST(SvgImage, ARenderingAtOneRatioIsNotReusedAtAnother) {
    const auto image = SvgImage::FromData(kSquareSvg);
    Render(*image, 16, 1.0, GetApplicationTheme());
    const QImage doubled = Render(*image, 16, 2.0, GetApplicationTheme());
    EXPECT_EQ(Alpha(doubled, 8, 8), 255);
    EXPECT_EQ(Alpha(doubled, 7, 7), 0);
}

TEST(SvgImage, StaysCrispWhenTheTargetIsNotOnWholePixels) {
    const auto image = SvgImage::FromData(kSquareSvg);
    QImage target(32, 32, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::transparent);
    QPainter painter(&target);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    image->Paint(painter, QRectF(2.4, 2.4, 15.7, 15.7), GetApplicationTheme());
    painter.end();
    // Placed on the nearest whole pixels (2..17): the square covers 6..13 fully, nothing beside.
    EXPECT_EQ(qAlpha(target.pixel(6, 6)), 255);
    EXPECT_EQ(qAlpha(target.pixel(13, 13)), 255);
    EXPECT_EQ(qAlpha(target.pixel(5, 5)), 0);
    EXPECT_EQ(qAlpha(target.pixel(14, 14)), 0);
}

TEST(SvgImage, CurrentColorFollowsTheLightAndTheDarkTheme) {
    const auto image = SvgImage::FromData(textimg_test::InkSquareSvg(16));
    const auto light = GetApplicationTheme();
    ASSERT_FALSE(light.dark);
    const QImage onLight = Render(*image, 16, 1.0, light);
    EXPECT_EQ(onLight.pixel(8, 8), kelui::ui::ToQColor(light.text).rgb());

    const textimg_test::ScopedDarkPalette darkPalette;
    const auto dark = GetApplicationTheme();
    ASSERT_TRUE(dark.dark);
    const QImage onDark = Render(*image, 16, 1.0, dark);
    EXPECT_EQ(onDark.pixel(8, 8), kelui::ui::ToQColor(dark.text).rgb());
    EXPECT_NE(onDark.pixel(8, 8), onLight.pixel(8, 8));
}

TEST(SvgImage, OtherColoursStayInTheDarkTheme) {
    const textimg_test::ScopedDarkPalette darkPalette;
    const QImage rendered = Render(*SvgImage::FromData(kBlueSvg), 16, 1.0, GetApplicationTheme());
    EXPECT_EQ(rendered.pixel(8, 8), QColor(0x26, 0x7f, 0xeb).rgb());
}

TEST(SvgImage, IsScaledIntoTheTarget) {
    const auto image = SvgImage::FromData(kSquareSvg);
    const QImage rendered = Render(*image, 32, 1.0, GetApplicationTheme());
    // At twice its size the square covers 8..23.
    EXPECT_EQ(Alpha(rendered, 8, 8), 255);
    EXPECT_EQ(Alpha(rendered, 23, 23), 255);
    EXPECT_EQ(Alpha(rendered, 7, 7), 0);
    EXPECT_EQ(Alpha(rendered, 24, 24), 0);
}

}  // namespace
