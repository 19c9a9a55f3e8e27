// A node of the toolkit's tree: one reference-counted object that owns one QWidget. The node tree
// mirrors the widget tree (a child's widget is a child of its parent's widget), so focus,
// keyboard, accessibility and the platform style are Qt's, while layout stays the library's own:
// each node keeps the float rectangle it was given exactly, in its parent's coordinates, and its
// widget gets that rectangle rounded outwards to whole pixels (QRectF::toAlignedRect). Drawing
// (UI_Draw) happens in the node's own float coordinates, so a node at x = 2.5 draws at 2.5.
//
// Ownership: parents hold their children by intrusive pointer; a child knows its parent only as
// a raw back pointer that the parent clears when the child leaves. Nodes are deleted on the main
// thread (DeleteOnMainThreadRefCountedObject), and everything here is main-thread only.
//
//   boost::intrusive_ptr<UI_SubView> view(new UI_SubView);
//   parent->ChildPushBack(view);
//   view->UI_SetLocalRectF({15.0f, 10.0f, 310.0f, 20.0f});
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelcore/string/String.h>
#include <kelcore/utility/DeleteOnMainThreadRefCountedObject.h>
#include <kelui/limner/Limner.h>
#include <kelui/limner/WidgetDrawingSupplier.h>
#include <kelui/ui/MouseEvent.h>
#include <kelui/ui/PointerEvent.h>

class QWidget;

namespace kelui::ui {

namespace detail {
class NodeEventBridge;
}

class UI_Node : public kelcore::utility::DeleteOnMainThreadRefCountedObject {
public:
    using MouseEventFunction = std::function<bool(UI_Node*, const MouseEvent&, bool&)>;

    /// A node over a plain widget that draws through UI_Draw.
    UI_Node();
    ~UI_Node() override;

    /// The widget this node owns (or wraps). Never null while the node lives, unless a wrapped
    /// widget was deleted by its owner.
    QWidget* GetWidget() const;

    // Identity ------------------------------------------------------------------------------

    void UI_SetNodeID(std::string id);
    const std::string& UI_GetNodeID() const { return nodeID; }
    /// The first node below this one (depth first, this one excluded) whose id is `id`; null
    /// when there is none.
    boost::intrusive_ptr<UI_Node> UI_ChildGetFromID(std::string_view id) const;

    // Tree ----------------------------------------------------------------------------------

    /// Appends `child`, first taking it from any parent it has.
    void ChildPushBack(const boost::intrusive_ptr<UI_Node>& child);
    /// Inserts `child` before position `index` (clamped to the child count).
    void ChildInsert(const boost::intrusive_ptr<UI_Node>& child, std::size_t index);
    /// Removes `child` now. Does nothing when it is not a child of this node.
    void ChildRemove(const boost::intrusive_ptr<UI_Node>& child);
    /// Removes `child` later on the main thread, for callers inside the child's own event
    /// handling; both nodes live until then. Does nothing when it is no child by then.
    void ChildRequestRemove(const boost::intrusive_ptr<UI_Node>& child);
    std::size_t ChildCount() const { return children.size(); }
    boost::intrusive_ptr<UI_Node> ChildAt(std::size_t index) const;
    const std::vector<boost::intrusive_ptr<UI_Node>>& GetChildren() const { return children; }
    /// The parent node, or null for a root.
    UI_Node* UI_GetParentNode() const { return parent; }
    /// The topmost node above this one (this node when it has no parent).
    boost::intrusive_ptr<UI_Node> UI_GetRootNode();

    // Geometry ------------------------------------------------------------------------------

    /// Keeps `rect` exactly (in the parent's coordinates) and places the widget on the pixels
    /// that cover it. Calls UI_SizeChanged when the width or height changed.
    virtual void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect);
    kelcore::geom::RectT<float> UI_GetLocalRectF() const { return localRect; }
    /// UI_SetLocalRectF with whole numbers.
    void UI_SetLocalRect(const kelcore::geom::RectT<int>& rect);
    /// Turns a rectangle in the coordinates that this node's local rectangle is given in (its
    /// parent's) into global screen coordinates, so that
    /// `node->UI_LocalToGlobalF(node->UI_GetLocalRectF())` is where the node is on screen.
    kelcore::geom::RectT<float> UI_LocalToGlobalF(const kelcore::geom::RectT<float>& rect) const;
    /// The same for a point.
    kelcore::geom::PointT<float> UI_LocalToGlobalF(kelcore::geom::PointT<float> point) const;
    /// Called after the size changed, with the new rectangle. Views lay out their children here.
    virtual void UI_SizeChanged(const kelcore::geom::RectT<float>& rect);
    /// The size this node would like, measured with `measuring`. The base answers its present
    /// size.
    virtual kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring);

    // Visibility and state ------------------------------------------------------------------

    /// Shows or hides the node (and so its widget, once it has a parent widget).
    void UI_Show(bool show);
    /// Hides the node; `hide` false shows it. Windows (popups, dialogs) also close.
    virtual void UI_Hide(bool hide);
    /// Whether the node itself is set to be shown.
    bool UI_IsShown() const { return shown; }
    /// Whether the view takes part in layout: it is set to be shown. Whether its parents or its
    /// window are on screen is not asked, so a stack can be measured before its window opens.
    bool UI_IsViewVisible() const { return shown; }
    /// Whether the node and every node above it are set to be shown.
    bool UI_IsShownInTree() const;
    void UI_SetEnabled(bool enabled);
    void UI_SetDisabled(bool disabled) { UI_SetEnabled(!disabled); }
    bool UI_IsEnabled() const;
    /// Brings the node's window to the front and gives it the keyboard.
    virtual void UI_Activate();

    // Drawing -------------------------------------------------------------------------------

    /// Draws the node in its own coordinates. Children are drawn by Qt after their parent, so
    /// the base draws nothing: an override that "draws the children first" may call it freely.
    virtual void UI_Draw(limner::Limner& limner);
    /// Asks for the node to be drawn again.
    void UI_Invalidate();
    /// The supplier of this node or, failing that, of the nearest node above it that has one;
    /// null for a tree that no window, popup or dialog holds.
    std::shared_ptr<limner::WidgetDrawingSupplier> UI_GetDrawSupplier() const;
    /// UI_GetDrawSupplier, or the toolkit's default supplier for a node outside any window, so
    /// a node can measure and draw before it is on screen. Never null.
    std::shared_ptr<limner::WidgetDrawingSupplier> UI_GetDrawSupplierOrDefault() const;
    /// Gives this node (and the nodes below it that have none of their own) a supplier.
    void UI_SetDrawSupplier(std::shared_ptr<limner::WidgetDrawingSupplier> supplier);

    // Input ---------------------------------------------------------------------------------

    /// Called for each pointer event over the node, after the custom mouse functions; true
    /// consumes the event. The base does nothing and returns false.
    virtual bool UI_DoPointerEvent(const PointerEvent& event);
    /// Installs `function` to see mouse events first; when it sets its `handled` argument the
    /// event stops there. Functions with a lower `priority` run first; equal ones in order of
    /// installation. The node keeps the function until it dies.
    void UI_AddCustomMouseEventFunction(std::shared_ptr<MouseEventFunction> function, int priority);
    /// A tooltip of `text`, wrapped at `width` pixels; an empty text removes it.
    void UI_SetToolTip(kelcore::string::string_view text, float width);
    kelcore::string::string UI_GetToolTip() const;
    float UI_GetToolTipWidth() const { return toolTipWidth; }
    /// Lives exactly as long as the node: what UI_WeakNodePtr watches.
    std::weak_ptr<void> GetLifetimeToken() const { return lifetimeToken; }

    /// The name that screen readers announce for this node.
    void SetAccessibleName(kelcore::string::string_view name);

protected:
    /// A node over `widget`, which it owns from now on.
    explicit UI_Node(QWidget* widget);
    struct WrapTag {};
    /// A node over a widget that someone else owns: the node never deletes or reparents it.
    UI_Node(QWidget* widget, WrapTag);

    /// Where the node's own (0, 0) lies inside its widget: the fraction that rounding removed.
    kelcore::geom::PointT<float> GetOriginInWidget() const { return originInWidget; }
    /// Re-applies visibility to the widget; windows override it to show or hide themselves.
    virtual void ApplyVisibility();
    /// The widget that children's widgets go into: the node's own widget, unless a control
    /// keeps its children inside a part of itself (a scroll area's viewport, a window's body).
    virtual QWidget* GetChildWidgetParent() const;
    /// For a node over someone else's widget: takes the widget's geometry as the rectangle.
    void SyncRectFromWrappedWidget();
    /// The node's widget was painted: draws UI_Draw through a painting limner.
    void PaintWidget(QWidget& widget);

private:
    friend class detail::NodeEventBridge;
    friend class NodeWidget;

    void AttachChildWidget(UI_Node& child);
    void DetachChildWidget(UI_Node& child);
    void ApplyGeometry();
    bool DispatchPointerEvent(const MouseEvent& event);

    struct WidgetHolder;
    std::unique_ptr<WidgetHolder> holder;
    std::unique_ptr<detail::NodeEventBridge> eventBridge;
    std::string nodeID;
    std::vector<boost::intrusive_ptr<UI_Node>> children;
    UI_Node* parent = nullptr;
    kelcore::geom::RectT<float> localRect{};
    kelcore::geom::PointT<float> originInWidget{};
    bool shown = false;
    std::shared_ptr<limner::WidgetDrawingSupplier> drawSupplier;
    struct MouseFunctionEntry {
        std::shared_ptr<MouseEventFunction> function;
        int priority = 0;
    };
    std::vector<MouseFunctionEntry> mouseFunctions;
    float toolTipWidth = 0.0f;
    std::shared_ptr<void> lifetimeToken = std::make_shared<char>();
};

/// Casts a node pointer to `T`; null when the node is not a `T`.
template <class T>
boost::intrusive_ptr<T> NodeCast(const boost::intrusive_ptr<UI_Node>& node) {
    return boost::intrusive_ptr<T>(dynamic_cast<T*>(node.get()));
}

}  // namespace kelui::ui
