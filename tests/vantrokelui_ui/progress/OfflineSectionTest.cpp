#include <vantrokelui/view/OfflineSection.h>

#include <QAccessible>

#include <gtest/gtest.h>

#include <kelui/ui/QtConversions.h>

#include "ProgressViewFixture.h"

namespace vantrokelui::view {
namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;
using testing::ProgressViewFixture;

using OfflineSectionTest = ProgressViewFixture;

QString AccessibleName(QWidget* widget) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
    return accessible ? accessible->text(QAccessible::Name) : QString();
}

TEST_F(OfflineSectionTest, ShowsTheDisconnectedIconBesideTheConnectText) {
    boost::intrusive_ptr<OfflineSection> section(new OfflineSection);
    root->ChildPushBack(section);
    Pump();

    EXPECT_TRUE(section->UI_IsShown());
    EXPECT_TRUE(section->GetImage()->UI_IsShown());
    EXPECT_TRUE(section->GetText()->UI_IsShown());
    ASSERT_EQ(section->ChildCount(), 2u);
    EXPECT_EQ(section->ChildAt(0), section->GetImage());
    EXPECT_EQ(section->ChildAt(1), section->GetText());
    ASSERT_NE(section->GetImage()->GetImage(), nullptr);
    EXPECT_EQ(section->GetImage()->GetImageRect(), (RectT<int>{0, 0, 16, 16}));
    EXPECT_EQ(section->GetText()->GetText(), u"Connect to the internet to share for review.");
    EXPECT_EQ(AccessibleName(section->GetText()->GetWidget()),
              QStringLiteral("Connect to the internet to share for review."));
}

TEST_F(OfflineSectionTest, AsksForTheFullPanelWidthAndOneIconHigh) {
    boost::intrusive_ptr<OfflineSection> section(new OfflineSection);
    EXPECT_EQ(sharedui::GetRecommendedSize(section), (PointT<float>{340.0f, 16.0f}));
}

TEST_F(OfflineSectionTest, PlacesTheIconAndTheTextHalfAPixelDown) {
    boost::intrusive_ptr<OfflineSection> section(new OfflineSection);
    root->ChildPushBack(section);

    section->UI_SetLocalRectF({15.0f, 40.0f, 340.0f, 16.0f});

    EXPECT_EQ(section->GetImage()->UI_GetLocalRectF(), (RectT<float>{0.0f, 0.5f, 16.0f, 16.0f}));
    EXPECT_EQ(section->GetText()->UI_GetLocalRectF(), (RectT<float>{21.0f, 0.5f, 289.0f, 15.0f}));
}

TEST_F(OfflineSectionTest, WithoutADrawingSupplierLeavesItsPartsWhereTheyAre) {
    boost::intrusive_ptr<OfflineSection> section(new OfflineSection);

    section->UI_SetLocalRectF({15.0f, 40.0f, 340.0f, 16.0f});

    EXPECT_EQ(section->UI_GetLocalRectF(), (RectT<float>{15.0f, 40.0f, 340.0f, 16.0f}));
    EXPECT_EQ(section->GetImage()->UI_GetLocalRectF(), RectT<float>{});
    EXPECT_EQ(section->GetText()->UI_GetLocalRectF(), RectT<float>{});
}

}  // namespace
}  // namespace vantrokelui::view
