#include "controls/PopupButtonWidget.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMenu>

#include <kelui/controls/UI_Popup.h>
#include <kelui/ui/QtConversions.h>

namespace kelui::controls::detail {

namespace {

// Screen readers hear a menu button: its name is the owner's accessible name or, without one,
// what the button shows; pressing it opens the list.
class PopupButtonAccessible final : public QAccessibleWidget {
public:
    explicit PopupButtonAccessible(QWidget* widget)
        : QAccessibleWidget(widget, QAccessible::ButtonMenu) {}

    QString text(QAccessible::Text kind) const override {
        if (kind != QAccessible::Name) {
            return QAccessibleWidget::text(kind);
        }
        const QString name = widget()->accessibleName();
        if (!name.isEmpty()) {
            return name;
        }
        return static_cast<const PopupButtonWidget*>(widget())->GetFallbackName();
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        const auto* button = static_cast<const PopupButtonWidget*>(widget());
        const bool open = button->GetPopup() && button->GetPopup()->IsMenuShowing();
        state.hasPopup = true;
        state.expandable = true;
        state.expanded = open;
        state.collapsed = !open;
        return state;
    }

    QStringList actionNames() const override {
        return QStringList{showMenuAction(), pressAction()} + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& action) override {
        auto* button = static_cast<PopupButtonWidget*>(widget());
        if ((action == showMenuAction() || action == pressAction()) && button->GetPopup()) {
            button->GetPopup()->ShowMenu();
            return;
        }
        QAccessibleWidget::doAction(action);
    }
};

QAccessibleInterface* MakePopupButtonAccessible(const QString& className, QObject* object) {
    if (className == QLatin1String(PopupButtonWidget::staticMetaObject.className()) &&
        object->isWidgetType()) {
        return new PopupButtonAccessible(static_cast<QWidget*>(object));
    }
    return nullptr;
}

}  // namespace

PopupButtonWidget::PopupButtonWidget(UI_Popup& popup) : popup(&popup), menu(new QMenu(this)) {
    static const bool factoryInstalled = [] {
        QAccessible::installFactory(&MakePopupButtonAccessible);
        return true;
    }();
    static_cast<void>(factoryInstalled);

    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover, true);
    // A press on the button while its list is open only closes the list.
    menu->setNoReplayFor(this);
    menu->installEventFilter(this);
    // The lambdas below see `this` only while it lives: the connections' context is `this`, and
    // the node they reach is cleared by DetachNode before it dies.
    connect(this, &QAbstractButton::pressed, this, [this] {
        if (this->popup) {
            this->popup->ShowMenu();
        }
    });
    connect(menu, &QMenu::triggered, this, [this](QAction* action) {
        if (this->popup) {
            this->popup->OnActionTriggered(action);
        }
    });
}

PopupButtonWidget::~PopupButtonWidget() {
    menu->removeEventFilter(this);
}

void PopupButtonWidget::DetachNode() {
    popup = nullptr;
    menu->hide();
}

QString PopupButtonWidget::GetFallbackName() const {
    return popup ? ui::ToQString(popup->GetFallbackAccessibleName()) : QString();
}

void PopupButtonWidget::paintEvent(QPaintEvent* /*event*/) {
    if (popup) {
        popup->PaintButton(*this);
    }
}

void PopupButtonWidget::keyPressEvent(QKeyEvent* event) {
    const bool alt = event->modifiers().testFlag(Qt::AltModifier);
    const bool opens = event->key() == Qt::Key_F4 ||
                       (alt && (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up));
    if (opens && popup) {
        event->accept();
        popup->ShowMenu();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

void PopupButtonWidget::focusInEvent(QFocusEvent* event) {
    switch (event->reason()) {
        case Qt::TabFocusReason:
        case Qt::BacktabFocusReason:
        case Qt::ShortcutFocusReason:
            keyboardFocus = true;
            break;
        case Qt::PopupFocusReason:
        case Qt::ActiveWindowFocusReason:
            break;  // the focus comes back as it left
        default:
            keyboardFocus = false;
            break;
    }
    QAbstractButton::focusInEvent(event);
}

void PopupButtonWidget::enterEvent(QEnterEvent* event) {
    update();
    QAbstractButton::enterEvent(event);
}

void PopupButtonWidget::leaveEvent(QEvent* event) {
    update();
    QAbstractButton::leaveEvent(event);
}

bool PopupButtonWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == menu && event->type() == QEvent::Hide && popup) {
        popup->OnMenuHidden();
    }
    return QAbstractButton::eventFilter(watched, event);
}

}  // namespace kelui::controls::detail
