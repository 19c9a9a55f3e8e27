#include <kelui/ui/UI_Node.h>

#include <algorithm>
#include <cmath>

#include <QPainter>
#include <QPointer>
#include <QWidget>

#include <kelcore/threads/MainThread.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>

#include "limner/PainterLimner.h"
#include "ui/NodeEventBridge.h"
#include "ui/NodeWidget.h"

namespace kelui::ui {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

struct UI_Node::WidgetHolder {
    QPointer<QWidget> widget;
    bool owned = true;
    // The parent widget this node's widget was put into; a destructor cannot ask the parent's
    // virtual GetChildWidgetParent any more, so detaching compares with this.
    QPointer<QWidget> attachedTo;
};

UI_Node::UI_Node() : UI_Node(static_cast<QWidget*>(nullptr)) {}

UI_Node::UI_Node(QWidget* widget)
    : holder(std::make_unique<WidgetHolder>()),
      eventBridge(std::make_unique<detail::NodeEventBridge>(*this)) {
    holder->widget = widget ? widget : new NodeWidget(*this);
    holder->widget->hide();
    holder->widget->installEventFilter(eventBridge.get());
}

UI_Node::UI_Node(QWidget* widget, WrapTag)
    : holder(std::make_unique<WidgetHolder>()),
      eventBridge(std::make_unique<detail::NodeEventBridge>(*this)) {
    holder->widget = widget;
    holder->owned = false;
    shown = widget && !widget->isHidden();
    if (widget) {
        localRect = FromQRectF(QRectF(widget->geometry()));
        widget->installEventFilter(eventBridge.get());
    }
}

UI_Node::~UI_Node() {
    // Children that outlive this node must not go down with its widget.
    for (const auto& child : children) {
        child->parent = nullptr;
        DetachChildWidget(*child);
    }
    children.clear();
    QWidget* widget = holder->widget.data();
    if (!widget) {
        return;
    }
    widget->removeEventFilter(eventBridge.get());
    if (auto* nodeWidget = qobject_cast<NodeWidget*>(widget)) {
        nodeWidget->DetachNode();
    }
    if (holder->owned) {
        delete widget;
    }
}

QWidget* UI_Node::GetWidget() const {
    return holder->widget.data();
}

QWidget* UI_Node::GetChildWidgetParent() const {
    return GetWidget();
}

void UI_Node::UI_SetNodeID(std::string id) {
    nodeID = std::move(id);
}

boost::intrusive_ptr<UI_Node> UI_Node::UI_ChildGetFromID(std::string_view id) const {
    for (const auto& child : children) {
        if (child->nodeID == id) {
            return child;
        }
        if (auto found = child->UI_ChildGetFromID(id)) {
            return found;
        }
    }
    return nullptr;
}

void UI_Node::ChildPushBack(const boost::intrusive_ptr<UI_Node>& child) {
    ChildInsert(child, children.size());
}

void UI_Node::ChildInsert(const boost::intrusive_ptr<UI_Node>& child, std::size_t index) {
    if (!child || child.get() == this) {
        return;
    }
    const boost::intrusive_ptr<UI_Node> keep = child;  // the old parent may hold the last reference
    if (child->parent) {
        child->parent->ChildRemove(child);
    }
    index = std::min(index, children.size());
    children.insert(children.begin() + static_cast<std::ptrdiff_t>(index), child);
    child->parent = this;
    AttachChildWidget(*child);
}

void UI_Node::ChildRemove(const boost::intrusive_ptr<UI_Node>& child) {
    const auto found = std::find(children.begin(), children.end(), child);
    if (found == children.end()) {
        return;
    }
    const boost::intrusive_ptr<UI_Node> keep = child;
    children.erase(found);
    child->parent = nullptr;
    DetachChildWidget(*child);
}

void UI_Node::ChildRequestRemove(const boost::intrusive_ptr<UI_Node>& child) {
    if (!child) {
        return;
    }
    kelcore::threads::AsyncCallFromMainThread(
        [self = boost::intrusive_ptr<UI_Node>(this), child] { self->ChildRemove(child); });
}

boost::intrusive_ptr<UI_Node> UI_Node::ChildAt(std::size_t index) const {
    return index < children.size() ? children[index] : nullptr;
}

boost::intrusive_ptr<UI_Node> UI_Node::UI_GetRootNode() {
    UI_Node* node = this;
    while (node->parent) {
        node = node->parent;
    }
    return boost::intrusive_ptr<UI_Node>(node);
}

void UI_Node::AttachChildWidget(UI_Node& child) {
    QWidget* childWidget = child.GetWidget();
    QWidget* widget = GetChildWidgetParent();
    if (!childWidget || !widget || !child.holder->owned) {
        return;
    }
    childWidget->setParent(widget);
    child.holder->attachedTo = widget;
    child.ApplyGeometry();
    child.ApplyVisibility();
    // Keep the widgets' stacking and focus order that of the child list.
    const auto position = std::find_if(children.begin(), children.end(),
                                       [&child](const auto& node) { return node.get() == &child; });
    for (auto next = std::next(position); next != children.end(); ++next) {
        QWidget* nextWidget = (*next)->GetWidget();
        if (nextWidget && nextWidget->parentWidget() == widget) {
            childWidget->stackUnder(nextWidget);
            QWidget::setTabOrder(childWidget, nextWidget);
            break;
        }
    }
}

void UI_Node::DetachChildWidget(UI_Node& child) {
    QWidget* childWidget = child.GetWidget();
    QWidget* attachedTo = child.holder->attachedTo.data();
    child.holder->attachedTo = nullptr;
    if (childWidget && child.holder->owned && attachedTo &&
        childWidget->parentWidget() == attachedTo) {
        childWidget->hide();
        childWidget->setParent(nullptr);
    }
}

void UI_Node::UI_SetLocalRectF(const RectT<float>& rect) {
    const bool sizeChanged = rect.width != localRect.width || rect.height != localRect.height;
    localRect = rect;
    ApplyGeometry();
    if (sizeChanged) {
        UI_SizeChanged(rect);
    }
}

void UI_Node::UI_SetLocalRect(const RectT<int>& rect) {
    UI_SetLocalRectF({static_cast<float>(rect.x), static_cast<float>(rect.y),
                      static_cast<float>(rect.width), static_cast<float>(rect.height)});
}

void UI_Node::ApplyGeometry() {
    QWidget* widget = GetWidget();
    if (!widget || !holder->owned) {
        return;
    }
    // The parent's origin may itself sit inside a pixel: place the child relative to that.
    const PointT<float> parentOrigin = parent ? parent->originInWidget : PointT<float>{};
    const QRectF exact(parentOrigin.x + localRect.x, parentOrigin.y + localRect.y,
                       std::max(localRect.width, 0.0f), std::max(localRect.height, 0.0f));
    const QRect pixels = exact.toAlignedRect();
    originInWidget = {static_cast<float>(exact.x() - pixels.x()),
                      static_cast<float>(exact.y() - pixels.y())};
    if (widget->isWindow()) {
        widget->resize(pixels.size());
    } else {
        widget->setGeometry(pixels);
    }
    for (const auto& child : children) {
        child->ApplyGeometry();
    }
}

void UI_Node::SyncRectFromWrappedWidget() {
    QWidget* widget = GetWidget();
    if (holder->owned || !widget) {
        return;
    }
    const RectT<float> rect = FromQRectF(QRectF(widget->geometry()));
    const bool sizeChanged = rect.width != localRect.width || rect.height != localRect.height;
    localRect = rect;
    if (sizeChanged) {
        UI_SizeChanged(rect);
    }
}

RectT<float> UI_Node::UI_LocalToGlobalF(const RectT<float>& rect) const {
    const PointT<float> origin = UI_LocalToGlobalF(PointT<float>{rect.x, rect.y});
    return {origin.x, origin.y, rect.width, rect.height};
}

PointT<float> UI_Node::UI_LocalToGlobalF(PointT<float> point) const {
    // `point` is in the parent's coordinates: walk up, adding each parent's own origin.
    const UI_Node* node = this;
    while (node->parent) {
        point.x += node->parent->localRect.x;
        point.y += node->parent->localRect.y;
        node = node->parent;
    }
    QWidget* rootWidget = node->GetWidget();
    if (!rootWidget) {
        return point;
    }
    if (!node->holder->owned || !rootWidget->isWindow()) {
        // A widget inside someone else's window: its rectangle is in its parent widget's
        // coordinates.
        if (QWidget* parentWidget = rootWidget->parentWidget()) {
            const QPointF global = parentWidget->mapToGlobal(QPointF(point.x, point.y));
            return {static_cast<float>(global.x()), static_cast<float>(global.y())};
        }
        return point;
    }
    // A root that is a window of its own: its local rectangle's origin is where the window is.
    const QPointF global =
        rootWidget->mapToGlobal(QPointF(point.x - node->localRect.x + node->originInWidget.x,
                                        point.y - node->localRect.y + node->originInWidget.y));
    return {static_cast<float>(global.x()), static_cast<float>(global.y())};
}

void UI_Node::UI_SizeChanged(const RectT<float>& /*rect*/) {}

PointT<float> UI_Node::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return localRect.Size();
}

void UI_Node::UI_Show(bool show) {
    shown = show;
    ApplyVisibility();
}

void UI_Node::UI_Hide(bool hide) {
    UI_Show(!hide);
}

void UI_Node::ApplyVisibility() {
    QWidget* widget = GetWidget();
    if (!widget) {
        return;
    }
    // A widget without a parent would become a window of its own: it waits, hidden, for one.
    if (!holder->owned || widget->parentWidget()) {
        widget->setVisible(shown);
    }
}

bool UI_Node::UI_IsShownInTree() const {
    for (const UI_Node* node = this; node; node = node->parent) {
        if (!node->shown) {
            return false;
        }
    }
    return true;
}

void UI_Node::UI_SetEnabled(bool enabled) {
    if (QWidget* widget = GetWidget()) {
        widget->setEnabled(enabled);
    }
}

bool UI_Node::UI_IsEnabled() const {
    const QWidget* widget = GetWidget();
    return widget && widget->isEnabled();
}

void UI_Node::UI_Activate() {
    if (QWidget* widget = GetWidget()) {
        widget->window()->activateWindow();
        widget->window()->raise();
    }
}

void UI_Node::UI_Draw(limner::Limner& /*limner*/) {}

void UI_Node::UI_Invalidate() {
    if (QWidget* widget = GetWidget()) {
        widget->update();
    }
}

std::shared_ptr<limner::WidgetDrawingSupplier> UI_Node::UI_GetDrawSupplier() const {
    for (const UI_Node* node = this; node; node = node->parent) {
        if (node->drawSupplier) {
            return node->drawSupplier;
        }
    }
    return nullptr;
}

std::shared_ptr<limner::WidgetDrawingSupplier> UI_Node::UI_GetDrawSupplierOrDefault() const {
    auto supplier = UI_GetDrawSupplier();
    return supplier ? supplier : UI_NodeManager::Get(0).GetDefaultDrawSupplier();
}

void UI_Node::UI_SetDrawSupplier(std::shared_ptr<limner::WidgetDrawingSupplier> supplier) {
    drawSupplier = std::move(supplier);
}

void UI_Node::PaintWidget(QWidget& widget) {
    QPainter painter(&widget);
    const auto supplier = UI_GetDrawSupplierOrDefault();
    limner::PainterLimner limner(painter, supplier->GetTheme());
    limner.Translate(originInWidget.x, originInWidget.y);
    UI_Draw(limner);
}

bool UI_Node::UI_DoPointerEvent(const PointerEvent& /*event*/) {
    return false;
}

void UI_Node::UI_AddCustomMouseEventFunction(std::shared_ptr<MouseEventFunction> function,
                                             int priority) {
    if (!function) {
        return;
    }
    const auto position = std::upper_bound(
        mouseFunctions.begin(), mouseFunctions.end(), priority,
        [](int value, const MouseFunctionEntry& entry) { return value < entry.priority; });
    mouseFunctions.insert(position, MouseFunctionEntry{std::move(function), priority});
}

bool UI_Node::DispatchPointerEvent(const MouseEvent& event) {
    // Keep this node alive through handlers that drop the last outside reference to it.
    const boost::intrusive_ptr<UI_Node> keep(this);
    const auto functions = mouseFunctions;
    for (const auto& entry : functions) {
        bool handled = false;
        (*entry.function)(this, event, handled);
        if (handled) {
            return true;
        }
    }
    return UI_DoPointerEvent(event);
}

void UI_Node::UI_SetToolTip(kelcore::string::string_view text, float width) {
    toolTipWidth = width;
    QWidget* widget = GetWidget();
    if (!widget) {
        return;
    }
    if (text.empty()) {
        widget->setToolTip(QString());
        return;
    }
    // Rich text wraps; a table of the given width is how Qt's tooltips take a width.
    widget->setToolTip(QStringLiteral("<table width=\"%1\"><tr><td>%2</td></tr></table>")
                           .arg(static_cast<int>(std::lround(width)))
                           .arg(ToQString(text).toHtmlEscaped()));
    widget->setProperty("kelui_toolTipText", ToQString(text));
}

kelcore::string::string UI_Node::UI_GetToolTip() const {
    const QWidget* widget = GetWidget();
    if (!widget || widget->toolTip().isEmpty()) {
        return {};
    }
    return FromQString(widget->property("kelui_toolTipText").toString());
}

void UI_Node::SetAccessibleName(kelcore::string::string_view name) {
    if (QWidget* widget = GetWidget()) {
        widget->setAccessibleName(ToQString(name));
    }
}

}  // namespace kelui::ui
