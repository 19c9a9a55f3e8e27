#include <kelui/ui/UI_Node.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/UI_SubView.h>

#include <QApplication>
#include <QWidget>

#include <gtest/gtest.h>

namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;
using kelui::ui::UI_Node;
using kelui::ui::UI_SubView;

template <class T>
boost::intrusive_ptr<T> Make() {
    return boost::intrusive_ptr<T>(new T);
}

TEST(UI_Node, KeepsItsFloatRectangleExactlyAndCoversItWithWholePixels) {
    auto root = Make<UI_SubView>();
    auto child = Make<UI_SubView>();
    root->ChildPushBack(child);
    root->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 200.0f});
    child->UI_SetLocalRectF({15.0f, 2.5f, 155.25f, 14.0f});

    EXPECT_EQ(child->UI_GetLocalRectF(), (RectT<float>{15.0f, 2.5f, 155.25f, 14.0f}));
    EXPECT_EQ(child->GetWidget()->geometry(), QRect(15, 2, 156, 15));
}

TEST(UI_Node, ChildWidgetsFollowTheNodeTree) {
    auto root = Make<UI_SubView>();
    auto first = Make<UI_SubView>();
    auto second = Make<UI_SubView>();
    root->ChildPushBack(second);
    root->ChildInsert(first, 0);

    ASSERT_EQ(root->ChildCount(), 2u);
    EXPECT_EQ(root->ChildAt(0), first);
    EXPECT_EQ(first->UI_GetParentNode(), root.get());
    EXPECT_EQ(first->GetWidget()->parentWidget(), root->GetWidget());

    root->ChildRemove(first);
    EXPECT_EQ(first->UI_GetParentNode(), nullptr);
    EXPECT_EQ(first->GetWidget()->parentWidget(), nullptr);
    EXPECT_EQ(root->ChildCount(), 1u);
}

TEST(UI_Node, InsertPastTheEndAppends) {
    auto root = Make<UI_SubView>();
    auto first = Make<UI_SubView>();
    auto last = Make<UI_SubView>();
    root->ChildPushBack(first);
    root->ChildInsert(last, 99);
    EXPECT_EQ(root->ChildAt(1), last);
}

TEST(UI_Node, AChildThatOutlivesItsParentKeepsItsWidget) {
    auto child = Make<UI_SubView>();
    {
        auto root = Make<UI_SubView>();
        root->ChildPushBack(child);
    }
    ASSERT_NE(child->GetWidget(), nullptr);
    EXPECT_EQ(child->UI_GetParentNode(), nullptr);
}

TEST(UI_Node, FindsDescendantsByID) {
    auto root = Make<UI_SubView>();
    auto middle = Make<UI_SubView>();
    auto leaf = Make<UI_SubView>();
    leaf->UI_SetNodeID("Leaf");
    root->ChildPushBack(middle);
    middle->ChildPushBack(leaf);
    EXPECT_EQ(root->UI_ChildGetFromID("Leaf"), leaf);
    EXPECT_EQ(root->UI_ChildGetFromID("Missing"), nullptr);
    EXPECT_EQ(leaf->UI_GetRootNode(), root);
}

TEST(UI_Node, ViewVisibilityIsTheNodesOwnWhileShownInTreeAsksEveryAncestor) {
    auto root = Make<UI_SubView>();
    auto child = Make<UI_SubView>();
    root->ChildPushBack(child);
    child->UI_Show(true);
    EXPECT_TRUE(child->UI_IsViewVisible());
    EXPECT_FALSE(child->UI_IsShownInTree());
    root->UI_Show(true);
    EXPECT_TRUE(child->UI_IsShownInTree());
    EXPECT_TRUE(child->GetWidget()->isVisibleTo(root->GetWidget()));
    child->UI_Hide(true);
    EXPECT_FALSE(child->UI_IsShown());
    EXPECT_FALSE(child->UI_IsViewVisible());
    EXPECT_FALSE(child->GetWidget()->isVisibleTo(root->GetWidget()));
}

TEST(UI_Node, SizeChangedRunsOnlyWhenTheSizeChanges) {
    struct Counting : UI_SubView {
        int calls = 0;
        void UI_SizeChanged(const RectT<float>&) override { ++calls; }
    };
    boost::intrusive_ptr<Counting> node(new Counting);
    node->UI_SetLocalRectF({0, 0, 10, 10});
    node->UI_SetLocalRectF({5, 5, 10, 10});
    node->UI_SetLocalRectF({5, 5, 12, 10});
    EXPECT_EQ(node->calls, 2);
}

TEST(UI_Node, DrawSupplierComesFromTheNearestAncestorThatHasOne) {
    auto root = Make<UI_SubView>();
    auto child = Make<UI_SubView>();
    root->ChildPushBack(child);
    EXPECT_EQ(child->UI_GetDrawSupplier(), nullptr);
    EXPECT_EQ(child->UI_GetDrawSupplierOrDefault(),
              kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
    auto supplier = std::make_shared<limner::WidgetDrawingSupplier>(kelui::skins::Theme{});
    root->UI_SetDrawSupplier(supplier);
    EXPECT_EQ(child->UI_GetDrawSupplier(), supplier);
    EXPECT_EQ(child->UI_GetDrawSupplierOrDefault(), supplier);
}

}  // namespace
