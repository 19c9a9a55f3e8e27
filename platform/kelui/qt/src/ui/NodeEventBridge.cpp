#include "ui/NodeEventBridge.h"

#include <QEnterEvent>
#include <QEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QWidget>

#include <kelui/ui/UI_Node.h>

namespace kelui::ui::detail {

namespace {

int ToButton(Qt::MouseButton button) {
    switch (button) {
        case Qt::LeftButton:
            return 1;
        case Qt::RightButton:
            return 2;
        case Qt::MiddleButton:
            return 3;
        default:
            return 0;
    }
}

}  // namespace

bool NodeEventBridge::eventFilter(QObject* watched, QEvent* event) {
    if (watched != node.GetWidget()) {
        return false;
    }
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize) {
        // A host's widget is placed by the host's layouts: its node follows.
        node.SyncRectFromWrappedWidget();
        return false;
    }
    PointerEvent::Action action = PointerEvent::kNone;
    int button = 0;
    QPointF position;
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove: {
            auto* mouse = static_cast<QMouseEvent*>(event);
            action = event->type() == QEvent::MouseButtonPress      ? PointerEvent::kDown
                     : event->type() == QEvent::MouseButtonRelease  ? PointerEvent::kUp
                     : event->type() == QEvent::MouseButtonDblClick ? PointerEvent::kDoubleClick
                                                                    : PointerEvent::kMove;
            button = ToButton(mouse->button());
            position = mouse->position();
            break;
        }
        case QEvent::Enter:
            action = PointerEvent::kEnter;
            position = static_cast<QEnterEvent*>(event)->position();
            break;
        case QEvent::Leave:
            action = PointerEvent::kLeave;
            break;
        default:
            return false;
    }
    const auto origin = node.GetOriginInWidget();
    const MouseEvent pointer(
        action, button,
        {static_cast<float>(position.x()) - origin.x, static_cast<float>(position.y()) - origin.y},
        static_cast<std::uint32_t>(QGuiApplication::keyboardModifiers()));
    const bool consumed = node.DispatchPointerEvent(pointer);
    // Crossings always reach the widget too: Qt keeps its hover state from them.
    return consumed && action != PointerEvent::kEnter && action != PointerEvent::kLeave;
}

}  // namespace kelui::ui::detail
