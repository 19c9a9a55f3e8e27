#include <kelui/ui/UI_PictureSupplyMessage.h>

#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <kelui/limner/PaintableImage.h>
#include <kelui/skins/Theme.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/utility/OS_ResourceManager.h>
#include <kelui/utility/SvgImage.h>

#include "keluiqt/textimg/TextImgTestSupport.h"

namespace {

using kelui::ui::ImageSupplyFunction;
using kelui::ui::RequestPicture;
using kelui::ui::UI_PictureSupplyMessage;
using kelui::utility::OS_ResourceManager;

struct UI_PictureSupplyMessageTest : ::testing::Test {
    UI_PictureSupplyMessageTest() {
        EXPECT_TRUE(textimg_test::WriteFile(
            std::filesystem::path(folder.path().toStdString()) / "S_Ink_16.svg",
            textimg_test::InkSquareSvg(16)));
    }

    QTemporaryDir folder;
    OS_ResourceManager resources{std::filesystem::path(folder.path().toStdString())};
};

/// The colour of the middle of `image` painted into a 16-pixel square with the theme of now.
QRgb PaintedInk(const limner::ImageInterface& image) {
    QImage target(16, 16, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::transparent);
    QPainter painter(&target);
    dynamic_cast<const limner::PaintableImage&>(image).Paint(painter, QRectF(0, 0, 16, 16),
                                                             kelui::skins::GetApplicationTheme());
    painter.end();
    return target.convertToFormat(QImage::Format_ARGB32).pixel(8, 8);
}

TEST_F(UI_PictureSupplyMessageTest, SetIconWithoutAManagerSetsNothing) {
    UI_PictureSupplyMessage message;
    message.SetIcon("S_Ink_16", nullptr, true, nullptr);
    EXPECT_EQ(message.GetImage(), nullptr);
    EXPECT_TRUE(message.GetIconName().empty());
}

TEST_F(UI_PictureSupplyMessageTest, SetIconOfAnUnknownNameSetsNothing) {
    UI_PictureSupplyMessage message;
    message.SetIcon("S_Missing_16", &resources, true, nullptr);
    EXPECT_EQ(message.GetImage(), nullptr);
    EXPECT_TRUE(message.GetIconName().empty());
}

TEST_F(UI_PictureSupplyMessageTest, SetIconSetsTheManagersImageAndItsName) {
    UI_PictureSupplyMessage message;
    message.SetIcon("S_Ink_16", &resources, true, nullptr);
    EXPECT_EQ(message.GetImage(), resources.GetImage("S_Ink_16"));
    EXPECT_EQ(message.GetIconName(), "S_Ink_16");
}

TEST_F(UI_PictureSupplyMessageTest, SetImageSetsTheImageAndForgetsAnIconName) {
    const auto image = kelui::utility::SvgImage::FromData(textimg_test::InkSquareSvg(8));
    UI_PictureSupplyMessage message;
    message.SetIcon("S_Ink_16", &resources, true, nullptr);
    message.SetImage(image);
    EXPECT_EQ(message.GetImage(), image);
    EXPECT_TRUE(message.GetIconName().empty());
}

TEST_F(UI_PictureSupplyMessageTest, AThemedIconTakesTheDarkThemeTextColour) {
    UI_PictureSupplyMessage message;
    message.SetIcon("S_Ink_16", &resources, true, nullptr);
    const textimg_test::ScopedDarkPalette dark;
    EXPECT_EQ(PaintedInk(*message.GetImage()),
              kelui::ui::ToQColor(kelui::skins::GetApplicationTheme().text).rgb());
}

TEST_F(UI_PictureSupplyMessageTest, AnUnthemedIconKeepsItsBlackInTheDarkTheme) {
    UI_PictureSupplyMessage message;
    message.SetIcon("S_Ink_16", &resources, false, nullptr);
    ASSERT_NE(message.GetImage(), nullptr);
    EXPECT_EQ(message.GetImage()->GetWidth(), 16.0f);
    const textimg_test::ScopedDarkPalette dark;
    EXPECT_EQ(PaintedInk(*message.GetImage()), qRgb(0, 0, 0));
}

TEST_F(UI_PictureSupplyMessageTest, RequestingFromNoFunctionGivesNoPicture) {
    EXPECT_EQ(RequestPicture(nullptr), nullptr);
    EXPECT_EQ(RequestPicture(std::make_shared<std::function<void(kelui::ui::ConstMessage*)>>()),
              nullptr);
}

TEST_F(UI_PictureSupplyMessageTest, RequestingFromAFunctionThatSetsNothingGivesNoPicture) {
    int calls = 0;
    const ImageSupplyFunction supply =
        std::make_shared<std::function<void(kelui::ui::ConstMessage*)>>(
            [&calls](kelui::ui::ConstMessage*) { ++calls; });
    EXPECT_EQ(RequestPicture(supply), nullptr);
    EXPECT_EQ(calls, 1);
}

TEST_F(UI_PictureSupplyMessageTest, RequestingGivesThePictureTheFunctionSets) {
    const ImageSupplyFunction supply =
        std::make_shared<std::function<void(kelui::ui::ConstMessage*)>>(
            [this](kelui::ui::ConstMessage* message) {
                if (auto* request = dynamic_cast<UI_PictureSupplyMessage*>(message)) {
                    request->SetIcon("S_Ink_16", &resources, true, nullptr);
                }
            });
    EXPECT_EQ(RequestPicture(supply), resources.GetImage("S_Ink_16"));
}

}  // namespace
