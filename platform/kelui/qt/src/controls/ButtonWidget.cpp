#include "controls/ButtonWidget.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QEnterEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>

#include <kelui/ui/QtConversions.h>

namespace kelui::controls::detail {

namespace {

// What a screen reader sees of a LinkWidget: a link that can be pressed, named by its text.
class LinkAccessible final : public QAccessibleWidget {
public:
    explicit LinkAccessible(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Link) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.linked = true;
        return state;
    }

    QStringList actionNames() const override {
        return QStringList(pressAction()) + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& actionName) override {
        if (actionName == pressAction()) {
            if (auto* button = qobject_cast<QAbstractButton*>(widget())) {
                button->click();
            }
            return;
        }
        QAccessibleWidget::doAction(actionName);
    }
};

QAccessibleInterface* MakeLinkAccessible(const QString& className, QObject* object) {
    if (className == QLatin1String(LinkWidget::staticMetaObject.className()) && object &&
        object->isWidgetType()) {
        return new LinkAccessible(static_cast<QWidget*>(object));
    }
    return nullptr;
}

}  // namespace

ButtonWidget::ButtonWidget(Callbacks callbacks) : callbacks(std::move(callbacks)) {
    setFocusPolicy(Qt::StrongFocus);
    // Hover feedback needs every move: the clickable part may be smaller than the widget.
    setMouseTracking(true);
    setAttribute(Qt::WA_Hover, true);
}

bool ButtonWidget::HasVisibleFocus() const {
    return hasFocus() && focusReason != Qt::MouseFocusReason;
}

void ButtonWidget::SetPointingCursor(bool pointing) {
    pointingCursor = pointing;
    if (!pointing) {
        unsetCursor();
    }
}

void ButtonWidget::paintEvent(QPaintEvent* /*event*/) {
    if (callbacks.paint) {
        callbacks.paint(*this);
    }
}

bool ButtonWidget::hitButton(const QPoint& position) const {
    if (!rect().contains(position)) {
        return false;
    }
    return !callbacks.hit || callbacks.hit(QPointF(position));
}

void ButtonWidget::keyPressEvent(QKeyEvent* event) {
    // QAbstractButton leaves Enter to a dialog's default button; a focused button of ours takes
    // it, as a focused push button in a dialog does.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat()) {
            click();
        }
        event->accept();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

void ButtonWidget::focusInEvent(QFocusEvent* event) {
    // Coming back to the window restores focus; how it got here the first time still holds.
    if (event->reason() != Qt::ActiveWindowFocusReason) {
        focusReason = event->reason();
    }
    QAbstractButton::focusInEvent(event);
}

void ButtonWidget::enterEvent(QEnterEvent* event) {
    UpdateHover(true, event->position());
    QAbstractButton::enterEvent(event);
}

void ButtonWidget::leaveEvent(QEvent* event) {
    UpdateHover(false, {});
    QAbstractButton::leaveEvent(event);
}

void ButtonWidget::mouseMoveEvent(QMouseEvent* event) {
    UpdateHover(rect().contains(event->position().toPoint()), event->position());
    QAbstractButton::mouseMoveEvent(event);
}

void ButtonWidget::changeEvent(QEvent* event) {
    // A disabled widget gets no mouse events, so it could not see the pointer leave.
    if (event->type() == QEvent::EnabledChange && !isEnabled()) {
        UpdateHover(false, {});
    }
    QAbstractButton::changeEvent(event);
}

void ButtonWidget::UpdateHover(bool inside, const QPointF& position) {
    const bool now = inside && (!callbacks.hit || callbacks.hit(position));
    if (pointingCursor) {
        if (now) {
            setCursor(Qt::PointingHandCursor);
        } else {
            unsetCursor();
        }
    }
    if (now != hovered) {
        hovered = now;
        update();
    }
}

QString ToPlainButtonText(kelcore::string::string_view text) {
    return ui::ToQString(text).replace(QLatin1Char('&'), QLatin1String("&&"));
}

void ReleaseAfterCurrentEvent(boost::intrusive_ptr<ui::UI_Node> node) {
    if (!node || node->RefCount() != 1 || !QCoreApplication::instance()) {
        return;
    }
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [last = std::move(node)] {}, Qt::QueuedConnection);
}

LinkWidget::LinkWidget(Callbacks callbacks) : ButtonWidget(std::move(callbacks)) {
    static const bool sFactoryInstalled = [] {
        QAccessible::installFactory(&MakeLinkAccessible);
        return true;
    }();
    static_cast<void>(sFactoryInstalled);
}

}  // namespace kelui::controls::detail
