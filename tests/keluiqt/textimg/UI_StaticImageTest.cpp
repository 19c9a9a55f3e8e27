#include <kelui/controls/UI_StaticImage.h>

#include <gtest/gtest.h>

#include <kelui/skins/Theme.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/utility/SvgImage.h>

#include "keluiqt/textimg/TextImgTestSupport.h"

namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;
using kelui::controls::UI_StaticImage;
using kelui::ui::ImageSupplyFunction;
using kelui::ui::UI_PictureSupplyMessage;
using kelui::utility::SvgImage;
using textimg_test::Grab;
using textimg_test::Make;

/// A picture of a given size that draws nothing: for what is measured, not what is seen.
class SizedPicture final : public limner::ImageInterface {
public:
    SizedPicture(float width, float height) : width(width), height(height) {}
    float GetWidth() const override { return width; }
    float GetHeight() const override { return height; }

private:
    float width;
    float height;
};

/// A supply function that sets `image` and counts how often it is asked.
ImageSupplyFunction Supplying(boost::intrusive_ptr<limner::ImageInterface> image, int& asked) {
    return std::make_shared<std::function<void(kelui::ui::ConstMessage*)>>(
        [image, &asked](kelui::ui::ConstMessage* message) {
            ++asked;
            if (auto* request = dynamic_cast<UI_PictureSupplyMessage*>(message)) {
                request->SetImage(image);
            }
        });
}

PointT<float> Recommended(UI_StaticImage& view) {
    const auto measuring =
        kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier()->GetMeasuringLimner();
    return view.UI_GetRecommendedSize(*measuring);
}

TEST(UI_StaticImage, HasNoPictureAndAnEmptyRectUntilGivenOne) {
    auto view = Make<UI_StaticImage>();
    EXPECT_EQ(view->GetImage(), nullptr);
    EXPECT_EQ(view->GetImageRect(), (RectT<int>{0, 0, 0, 0}));
    EXPECT_EQ(Recommended(*view), (PointT<float>{0.0f, 0.0f}));
}

TEST(UI_StaticImage, ImageRectIsThePictureSizeRoundedToWholePixels) {
    auto view = Make<UI_StaticImage>();
    view->SetImage(new SizedPicture(24.6f, 10.4f));
    EXPECT_EQ(view->GetImageRect(), (RectT<int>{0, 0, 25, 10}));
}

TEST(UI_StaticImage, RecommendsThePictureSize) {
    auto view = Make<UI_StaticImage>();
    view->SetImage(new SizedPicture(18.0f, 12.0f));
    EXPECT_EQ(Recommended(*view), (PointT<float>{18.0f, 12.0f}));
}

TEST(UI_StaticImage, AsksItsSupplyFunctionWhenFirstMeasuredNotBefore) {
    int asked = 0;
    const boost::intrusive_ptr<limner::ImageInterface> picture(new SizedPicture(16.0f, 16.0f));
    auto view = Make<UI_StaticImage>();
    view->SetImageSupplyFunction(Supplying(picture, asked));
    EXPECT_EQ(asked, 0);

    EXPECT_EQ(Recommended(*view), (PointT<float>{16.0f, 16.0f}));
    EXPECT_EQ(view->GetImageRect(), (RectT<int>{0, 0, 16, 16}));
    EXPECT_EQ(view->GetImage(), picture);
    EXPECT_EQ(asked, 1);
}

TEST(UI_StaticImage, AsksItsSupplyFunctionWhenFirstDrawn) {
    int asked = 0;
    auto view = Make<UI_StaticImage>();
    view->UI_SetLocalRectF({0.0f, 0.0f, 16.0f, 16.0f});
    view->SetImageSupplyFunction(
        Supplying(SvgImage::FromData(textimg_test::InkSquareSvg(16)), asked));

    const QImage drawn = Grab(*view);

    EXPECT_EQ(asked, 1);
    EXPECT_EQ(drawn.pixel(8, 8),
              kelui::ui::ToQColor(kelui::skins::GetApplicationTheme().text).rgb());
}

TEST(UI_StaticImage, AsksAgainWhenTheFunctionIsReplaced) {
    int firstAsked = 0;
    int secondAsked = 0;
    const boost::intrusive_ptr<limner::ImageInterface> small(new SizedPicture(16.0f, 16.0f));
    const boost::intrusive_ptr<limner::ImageInterface> large(new SizedPicture(24.0f, 24.0f));
    auto view = Make<UI_StaticImage>();
    view->SetImageSupplyFunction(Supplying(small, firstAsked));
    ASSERT_EQ(view->GetImage(), small);

    view->SetImageSupplyFunction(Supplying(large, secondAsked));

    EXPECT_EQ(view->GetImageRect(), (RectT<int>{0, 0, 24, 24}));
    EXPECT_EQ(firstAsked, 1);
    EXPECT_EQ(secondAsked, 1);
}

TEST(UI_StaticImage, ANullSupplyFunctionLeavesNoPicture) {
    int asked = 0;
    auto view = Make<UI_StaticImage>();
    view->SetImageSupplyFunction(Supplying(new SizedPicture(16.0f, 16.0f), asked));
    ASSERT_NE(view->GetImage(), nullptr);
    view->SetImageSupplyFunction(nullptr);
    EXPECT_EQ(view->GetImage(), nullptr);
}

TEST(UI_StaticImage, SetImageReplacesTheSuppliedPicture) {
    int asked = 0;
    const boost::intrusive_ptr<limner::ImageInterface> set(new SizedPicture(10.0f, 10.0f));
    auto view = Make<UI_StaticImage>();
    view->SetImageSupplyFunction(Supplying(new SizedPicture(16.0f, 16.0f), asked));
    view->SetImage(set);
    EXPECT_EQ(view->GetImage(), set);
    EXPECT_EQ(asked, 0);
}

TEST(UI_StaticImage, DrawsThePictureScaledIntoItsRectangle) {
    auto view = Make<UI_StaticImage>();
    view->SetImage(SvgImage::FromData(
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16" viewBox="0 0 16 16">)"
        R"(<rect x="0" y="0" width="8" height="16" fill="#267FEB"/></svg>)"));
    view->UI_SetLocalRectF({0.0f, 0.0f, 32.0f, 32.0f});

    const QImage drawn = Grab(*view);

    // The left half of the artwork fills the left half of the 32-pixel square.
    const QRgb blue = QColor(0x26, 0x7f, 0xeb).rgb();
    EXPECT_EQ(drawn.pixel(0, 0), blue);
    EXPECT_EQ(drawn.pixel(15, 31), blue);
    EXPECT_NE(drawn.pixel(16, 16), blue);
    EXPECT_NE(drawn.pixel(31, 31), blue);
}

TEST(UI_StaticImage, MonochromeArtworkTakesTheDisabledTextColourWhenDisabled) {
    auto view = Make<UI_StaticImage>();
    view->SetImage(SvgImage::FromData(textimg_test::InkSquareSvg(16)));
    view->UI_SetLocalRectF({0.0f, 0.0f, 16.0f, 16.0f});
    view->SetDisabled(true);

    const QImage drawn = Grab(*view);

    const auto theme = kelui::skins::GetApplicationTheme();
    ASSERT_NE(theme.disabledText, theme.text);
    EXPECT_EQ(drawn.pixel(8, 8), kelui::ui::ToQColor(theme.disabledText).rgb());
}

}  // namespace
