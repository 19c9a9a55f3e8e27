#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/sharedui/VStackView.h>
#include <vantrokelui/sharedui/WorkflowMainView.h>
#include <vantrokelui/sharedui/WorkflowSectionView.h>

#include <gtest/gtest.h>

#include "support/qt/QtMainThreadFixture.h"

namespace vantrokelui::sharedui {
namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

// A view that asks for a fixed size.
class FixedView final : public kelui::ui::UI_SubView {
public:
    FixedView(float width, float height) : size{width, height} {}
    PointT<float> UI_GetRecommendedSize(limner::Limner&) override { return size; }
    PointT<float> size;
};

boost::intrusive_ptr<FixedView> Shown(float width, float height) {
    boost::intrusive_ptr<FixedView> view(new FixedView(width, height));
    view->UI_Show(true);
    return view;
}

class StackLayoutTest : public testsupport::QtMainThreadFixture {
protected:
    boost::intrusive_ptr<VStackView> stack{new VStackView};
};

TEST_F(StackLayoutTest, ChildrenStandBelowEachOtherWithMarginsAndSpacingAtTheWidestWidth) {
    stack->SetMargins(3.0f, 5.0f, 7.0f, 11.0f);
    stack->SetSpacing(2.0f);
    auto first = Shown(100.0f, 20.0f);
    auto second = Shown(340.0f, 30.5f);
    stack->ChildPushBack(first);
    stack->ChildPushBack(second);

    const auto entries = stack->ComputeLayout();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ((RectT<float>{entries[0].x, entries[0].y, entries[0].width, entries[0].height}),
              (RectT<float>{5.0f, 3.0f, 340.0f, 20.0f}));
    // A child's size is its recommended size in whole pixels: 30.5 takes 31.
    EXPECT_EQ((RectT<float>{entries[1].x, entries[1].y, entries[1].width, entries[1].height}),
              (RectT<float>{5.0f, 25.0f, 340.0f, 31.0f}));
    // The trailing spacing of the last child does not count: 20 + 2 + 31, plus the margins.
    EXPECT_EQ(GetRecommendedSize(stack), (PointT<float>{356.0f, 63.0f}));
}

TEST_F(StackLayoutTest, AStackWhoseChildrenAreAllHiddenRecommendsJustItsMargins) {
    stack->SetMargins(1.0f, 2.0f, 3.0f, 4.0f);
    stack->SetSpacing(5.0f);
    auto hidden = Shown(100.0f, 20.0f);
    hidden->UI_Show(false);
    stack->ChildPushBack(hidden);
    stack->ChildPushBack(Shown(0.0f, 0.0f));
    EXPECT_EQ(GetRecommendedSize(stack), (PointT<float>{6.0f, 4.0f}));
}

TEST_F(StackLayoutTest, AHiddenChildBetweenTwoVisibleOnesLeavesNoGap) {
    stack->SetSpacing(1.0f);
    auto top = Shown(310.0f, 20.0f);
    auto hidden = Shown(310.0f, 50.0f);
    hidden->UI_Hide(true);
    auto bottom = Shown(310.0f, 24.0f);
    stack->ChildPushBack(top);
    stack->ChildPushBack(hidden);
    stack->ChildPushBack(bottom);

    stack->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 45.0f});
    EXPECT_EQ(hidden->UI_GetLocalRectF(), (RectT<float>{0.0f, 21.0f, 340.0f, 0.0f}));
    EXPECT_EQ(bottom->UI_GetLocalRectF(), (RectT<float>{0.0f, 21.0f, 340.0f, 24.0f}));
    EXPECT_EQ(GetRecommendedSize(stack), (PointT<float>{310.0f, 45.0f}));
}

TEST_F(StackLayoutTest, SettingTheRectangleGivesEveryChildTheStacksWidthLessTheMargins) {
    stack->SetMargins(1.0f, 2.0f, 1.0f, 3.0f);
    auto narrow = Shown(50.0f, 10.0f);
    stack->ChildPushBack(narrow);
    stack->UI_SetLocalRectF({0.0f, 0.0f, 400.0f, 12.0f});
    EXPECT_EQ(narrow->UI_GetLocalRectF(), (RectT<float>{2.0f, 1.0f, 395.0f, 10.0f}));
}

TEST_F(StackLayoutTest, TheMainViewHasOnePixelMarginsAndSpacing) {
    boost::intrusive_ptr<WorkflowMainView> main(new WorkflowMainView);
    EXPECT_EQ(main->UI_GetNodeID(), "WorkflowMainView");
    EXPECT_EQ(main->GetSpacing(), 1.0f);
    EXPECT_EQ(main->GetMargins().top, 1.0f);
    EXPECT_EQ(main->GetMargins().left, 1.0f);
    EXPECT_EQ(main->GetMargins().bottom, 1.0f);
    EXPECT_EQ(main->GetMargins().right, 1.0f);

    boost::intrusive_ptr<WorkflowSectionView> first(
        new WorkflowSectionView(Shown(340.0f, 100.0f), {}, nullptr));
    boost::intrusive_ptr<WorkflowSectionView> second(
        new WorkflowSectionView(Shown(340.0f, 50.0f), {}, nullptr));
    first->UI_Show(true);
    second->UI_Show(true);
    main->ChildPushBack(first);
    main->ChildPushBack(second);
    const auto size = GetRecommendedSize(main);
    EXPECT_EQ(size, (PointT<float>{342.0f, 153.0f}));
    main->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
    EXPECT_EQ(first->UI_GetLocalRectF(), (RectT<float>{1.0f, 1.0f, 340.0f, 100.0f}));
    EXPECT_EQ(second->UI_GetLocalRectF(), (RectT<float>{1.0f, 102.0f, 340.0f, 50.0f}));
}

TEST_F(StackLayoutTest, ASectionHasItsIdentifierNoMarginsAndShowsItsContent) {
    auto content = Shown(340.0f, 80.0f);
    content->UI_Show(false);
    boost::intrusive_ptr<WorkflowSectionView> section(
        new WorkflowSectionView(content, u"ignored title", nullptr));
    EXPECT_EQ(section->UI_GetNodeID(), "ShareSectionViewImpl");
    EXPECT_EQ(section->GetSpacing(), 1.0f);
    EXPECT_EQ(section->GetMargins().top, 0.0f);
    EXPECT_TRUE(content->UI_IsShown());
    ASSERT_EQ(section->ChildCount(), 1u);
    EXPECT_EQ(section->GetContent(), content);
}

TEST_F(StackLayoutTest, SetContentTwiceWithTheSameViewKeepsIt) {
    auto content = Shown(340.0f, 80.0f);
    boost::intrusive_ptr<WorkflowSectionView> section(
        new WorkflowSectionView(Shown(340.0f, 10.0f), {}, nullptr));
    section->SetContent(content);
    section->SetContent(content);
    ASSERT_EQ(section->ChildCount(), 1u);
    EXPECT_EQ(section->ChildAt(0), content);
    EXPECT_EQ(section->GetContent(), content);
    EXPECT_EQ(section->UI_GetLocalRectF(), (RectT<float>{0.0f, 0.0f, 340.0f, 80.0f}));
}

TEST_F(StackLayoutTest, SetContentWithNullShowsAnEmptyViewAndDropsTheOldOne) {
    auto old = Shown(340.0f, 80.0f);
    boost::intrusive_ptr<WorkflowSectionView> section(new WorkflowSectionView(old, {}, nullptr));
    section->SetContent(nullptr);
    ASSERT_EQ(section->ChildCount(), 1u);
    ASSERT_NE(section->GetContent(), nullptr);
    EXPECT_NE(section->GetContent(), old);
    EXPECT_TRUE(section->GetContent()->UI_IsShown());
    EXPECT_EQ(old->UI_GetParentNode(), nullptr);
    EXPECT_EQ(section->UI_GetLocalRectF(), (RectT<float>{0.0f, 0.0f, 0.0f, 0.0f}));
}

TEST_F(StackLayoutTest, RecommendedSizesAreRoundedUpToWholePixels) {
    EXPECT_EQ(GetRecommendedSize(Shown(10.2f, 3.01f)), (PointT<float>{11.0f, 4.0f}));
    EXPECT_EQ(GetRecommendedSize(nullptr), (PointT<float>{0.0f, 0.0f}));
}

}  // namespace
}  // namespace vantrokelui::sharedui
