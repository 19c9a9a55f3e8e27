#include <kelui/controls/UI_ProgressBar.h>

#include <QAccessible>
#include <QAccessibleValueInterface>
#include <QProgressBar>

#include <gtest/gtest.h>

#include <kelui/ui/QtConversions.h>

#include "keluiqt/textimg/TextImgTestSupport.h"

namespace {

using kelui::controls::UI_ProgressBar;
using textimg_test::Make;

QProgressBar& BarOf(const UI_ProgressBar& progress) {
    return *qobject_cast<QProgressBar*>(progress.GetWidget());
}

TEST(UI_ProgressBar, ShowsTheValueOutOfTheMaximumWithoutText) {
    auto progress = Make<UI_ProgressBar>();
    progress->SetProgress(80, 200);

    EXPECT_EQ(progress->GetValue(), 80);
    EXPECT_EQ(progress->GetMaximum(), 200);
    EXPECT_FALSE(progress->IsValueUnknown());
    EXPECT_EQ(BarOf(*progress).minimum(), 0);
    EXPECT_EQ(BarOf(*progress).maximum(), 100);
    EXPECT_EQ(BarOf(*progress).value(), 40);
    EXPECT_FALSE(BarOf(*progress).isTextVisible());
}

TEST(UI_ProgressBar, TheQtBarCountsInWholePercent) {
    auto progress = Make<UI_ProgressBar>();
    progress->SetProgress(3, 10);
    EXPECT_EQ(progress->GetValue(), 3);
    EXPECT_EQ(progress->GetMaximum(), 10);
    EXPECT_EQ(BarOf(*progress).maximum(), 100);
    EXPECT_EQ(BarOf(*progress).value(), 30);
    progress->SetProgress(1'999'999'999, 2'000'000'000);
    EXPECT_EQ(BarOf(*progress).value(), 99);
}

TEST(UI_ProgressBar, ClampsTheValueIntoItsRange) {
    auto progress = Make<UI_ProgressBar>();
    progress->SetProgress(150, 120);
    EXPECT_EQ(progress->GetValue(), 120);
    EXPECT_EQ(BarOf(*progress).value(), 100);
    progress->SetProgress(-5, 100);
    EXPECT_EQ(progress->GetValue(), 0);
    EXPECT_EQ(BarOf(*progress).value(), 0);
}

TEST(UI_ProgressBar, AnUnknownValueIsTheRangeZeroToZero) {
    auto progress = Make<UI_ProgressBar>();
    progress->SetProgress(40, 100);

    progress->SetValueUnknown();

    EXPECT_TRUE(progress->IsValueUnknown());
    EXPECT_EQ(BarOf(*progress).minimum(), 0);
    EXPECT_EQ(BarOf(*progress).maximum(), 0);
    EXPECT_EQ(progress->GetValue(), 0);
    EXPECT_EQ(progress->GetMaximum(), 0);
}

TEST(UI_ProgressBar, AKnownValueEndsTheBusyLook) {
    auto progress = Make<UI_ProgressBar>();
    progress->SetValueUnknown();
    progress->SetProgress(3, 10);
    EXPECT_FALSE(progress->IsValueUnknown());
    EXPECT_EQ(BarOf(*progress).maximum(), 100);
    EXPECT_EQ(BarOf(*progress).value(), 30);
}

TEST(UI_ProgressBar, AnEmptyJobShowsAnEmptyBarNotTheBusyLook) {
    auto progress = Make<UI_ProgressBar>();
    progress->SetProgress(0, 0);
    EXPECT_FALSE(progress->IsValueUnknown());
    EXPECT_GT(BarOf(*progress).maximum(), 0);
    EXPECT_EQ(BarOf(*progress).value(), 0);
}

TEST(UI_ProgressBar, ScreenReadersReadItsOwnersNameAndThePercentage) {
    auto progress = Make<UI_ProgressBar>();
    progress->SetAccessibleName(u"Uploading");
    progress->SetProgress(2, 5);

    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(progress->GetWidget());

    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::ProgressBar);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Uploading"));
    EXPECT_EQ(accessible->text(QAccessible::Value), QStringLiteral("40"));
    ASSERT_NE(accessible->valueInterface(), nullptr);
    EXPECT_EQ(accessible->valueInterface()->currentValue().toInt(), 40);
    EXPECT_EQ(accessible->valueInterface()->minimumValue().toInt(), 0);
    EXPECT_EQ(accessible->valueInterface()->maximumValue().toInt(), 100);
}

TEST(UI_ProgressBar, HasNoCustomThemeColourUntilOneIsSet) {
    auto progress = Make<UI_ProgressBar>();
    EXPECT_EQ(progress->GetCustomThemeColor(UI_ProgressBar::kTrackColorID), std::nullopt);
}

TEST(UI_ProgressBar, KeepsTheCustomThemeColoursSet) {
    auto progress = Make<UI_ProgressBar>();
    const limner::ColorRGBA track{0.9f, 0.2f, 0.1f, 1.0f};
    const limner::ColorRGBA other{0.1f, 0.2f, 0.3f, 1.0f};
    progress->SetCustomThemeColor(UI_ProgressBar::kTrackColorID, track);
    progress->SetCustomThemeColor(42, other);
    EXPECT_EQ(progress->GetCustomThemeColor(5000061), track);
    EXPECT_EQ(progress->GetCustomThemeColor(42), other);
}

TEST(UI_ProgressBar, TheTrackIsDrawnInTheCustomTrackColour) {
    auto progress = Make<UI_ProgressBar>();
    progress->UI_SetLocalRectF({0.0f, 0.0f, 200.0f, 12.0f});
    progress->SetProgress(0, 100);
    const QImage before = textimg_test::Grab(*progress);
    ASSERT_FALSE(textimg_test::HasPixel(before, QColor(0xd0, 0x30, 0x20)));

    progress->SetCustomThemeColor(UI_ProgressBar::kTrackColorID,
                                  kelui::ui::FromQColor(QColor(0xd0, 0x30, 0x20)));

    const QImage after = textimg_test::Grab(*progress);
    EXPECT_EQ(after.pixel(100, 6), QColor(0xd0, 0x30, 0x20).rgb());
}

TEST(UI_ProgressBar, AnotherCustomColourLeavesThePaletteAlone) {
    auto progress = Make<UI_ProgressBar>();
    const QPalette before = progress->GetWidget()->palette();
    progress->SetCustomThemeColor(42, {1.0f, 0.0f, 0.0f, 1.0f});
    EXPECT_EQ(progress->GetWidget()->palette(), before);
}

}  // namespace
