#include <kelui/controls/UI_Divider.h>

#include <gtest/gtest.h>

#include <kelui/skins/Theme.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/UI_SubView.h>

#include "keluiqt/textimg/TextImgTestSupport.h"

namespace {

using kelcore::geom::PointT;
using kelui::controls::UI_Divider;
using textimg_test::Grab;
using textimg_test::Make;

/// Whether every pixel of row `y` of `image` is `color`.
bool RowIs(const QImage& image, int y, QRgb color) {
    for (int x = 0; x < image.width(); ++x) {
        if (image.pixel(x, y) != color) {
            return false;
        }
    }
    return true;
}

void ExpectOneCentredRowOfGray3() {
    auto divider = Make<UI_Divider>();
    divider->UI_SetLocalRectF({0.0f, 0.0f, 120.0f, 9.0f});
    const QImage drawn = Grab(*divider);
    const QRgb gray3 = kelui::ui::ToQColor(kelui::skins::GetPaletteGrayColor(
                                               kelui::skins::GetApplicationTheme(), 3))
                           .rgb();
    const QRgb background = drawn.pixel(0, 0);
    ASSERT_NE(background, gray3);

    EXPECT_TRUE(RowIs(drawn, 4, gray3));
    for (int y : {0, 3, 5, 8}) {
        EXPECT_TRUE(RowIs(drawn, y, background)) << "row " << y;
    }
}

TEST(UI_Divider, RecommendsItsWidthAndOnePixel) {
    auto divider = Make<UI_Divider>();
    divider->UI_SetLocalRectF({15.0f, 40.0f, 310.0f, 8.0f});
    const auto measuring =
        kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier()->GetMeasuringLimner();
    EXPECT_EQ(divider->UI_GetRecommendedSize(*measuring), (PointT<float>{310.0f, 1.0f}));
}

TEST(UI_Divider, DrawsOneCentredRowInPaletteGray3) {
    ExpectOneCentredRowOfGray3();
}

TEST(UI_Divider, DrawsOneCentredRowInPaletteGray3OfTheDarkTheme) {
    const textimg_test::ScopedDarkPalette dark;
    ExpectOneCentredRowOfGray3();
}

TEST(UI_Divider, AOnePixelDividerIsOneFullRowAtAHalfPixelPosition) {
    auto root = Make<kelui::ui::UI_SubView>();
    root->UI_SetLocalRectF({0.0f, 0.0f, 100.0f, 10.0f});
    auto divider = Make<UI_Divider>();
    root->ChildPushBack(divider);
    divider->UI_Show(true);
    divider->UI_SetLocalRectF({0.0f, 4.5f, 100.0f, 1.0f});

    const QImage drawn = Grab(*root);

    // One sharp row rather than two half-tinted ones.
    const QRgb gray3 = kelui::ui::ToQColor(kelui::skins::GetPaletteGrayColor(
                                               kelui::skins::GetApplicationTheme(), 3))
                           .rgb();
    int gray3Rows = 0;
    for (int y = 0; y < drawn.height(); ++y) {
        gray3Rows += RowIs(drawn, y, gray3) ? 1 : 0;
    }
    EXPECT_EQ(gray3Rows, 1);
}

}  // namespace
