#include <kelui/utils/FormRoundedRect.h>

#include <gtest/gtest.h>

#include <kelui/skins/Theme.h>
#include <kelui/ui/UI_SubView.h>

#include "keluiqt/textimg/TextImgTestSupport.h"

namespace {

using kelcore::geom::RectT;
using kelui::utils::FormRoundedRect;
using limner::Path;

TEST(FormRoundedRect, AddsOneRoundedSubPath) {
    Path path;
    path.MoveTo({1.0f, 1.0f});
    FormRoundedRect(path, {2.0f, 3.0f, 40.0f, 20.0f}, 4.0f);

    ASSERT_EQ(path.GetCommands().size(), 2u);
    const Path::Command& added = path.GetCommands()[1];
    EXPECT_EQ(added.type, Path::CommandType::RoundedRect);
    EXPECT_EQ(added.rect, (RectT<float>{2.0f, 3.0f, 40.0f, 20.0f}));
    EXPECT_EQ(added.radius, 4.0f);
}

TEST(FormRoundedRect, LimitsTheRadiusToHalfTheShorterSide) {
    Path path;
    FormRoundedRect(path, {0.0f, 0.0f, 40.0f, 10.0f}, 20.0f);
    ASSERT_EQ(path.GetCommands().size(), 1u);
    EXPECT_EQ(path.GetCommands()[0].radius, 5.0f);
}

TEST(FormRoundedRect, NoRadiusGivesSquareCorners) {
    Path path;
    FormRoundedRect(path, {0.0f, 0.0f, 40.0f, 10.0f}, 0.0f);
    ASSERT_EQ(path.GetCommands().size(), 1u);
    EXPECT_EQ(path.GetCommands()[0].type, Path::CommandType::Rect);
}

TEST(FormRoundedRect, AnEmptyRectangleAddsNothing) {
    Path path;
    FormRoundedRect(path, {5.0f, 5.0f, 0.0f, 10.0f}, 3.0f);
    EXPECT_TRUE(path.IsEmpty());
}

// A node that fills a rounded rectangle over its whole area.
class RoundedCard final : public kelui::ui::UI_SubView {
public:
    void UI_Draw(limner::Limner& limner) override {
        Path path;
        FormRoundedRect(path, {0.0f, 0.0f, 40.0f, 40.0f}, 10.0f);
        limner.FillPath(path, {0.0f, 0.0f, 1.0f, 1.0f});
    }
};

TEST(FormRoundedRect, FillsARectangleWithRoundCorners) {
    auto card = textimg_test::Make<RoundedCard>();
    card->UI_SetLocalRectF({0.0f, 0.0f, 40.0f, 40.0f});
    const QImage drawn = textimg_test::Grab(*card);
    const QRgb blue = qRgb(0, 0, 255);
    EXPECT_EQ(drawn.pixel(20, 20), blue);
    EXPECT_EQ(drawn.pixel(20, 0), blue);
    EXPECT_EQ(drawn.pixel(0, 20), blue);
    EXPECT_NE(drawn.pixel(0, 0), blue);
    EXPECT_NE(drawn.pixel(39, 39), blue);
}

}  // namespace
