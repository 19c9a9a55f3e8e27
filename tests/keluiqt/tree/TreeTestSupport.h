// Helpers for the tree folder's tests: a window that shows one node the way a panel would, and
// a loop that drives Qt's events until a condition holds. Main thread.
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTest>
#include <QWidget>

#include <kelui/ui/UI_Node.h>

namespace kelui::tests {

/// Drives the event loop until `condition` holds or five seconds passed; answers the condition.
template <class Condition>
bool ProcessEventsUntil(Condition condition) {
    QDeadlineTimer deadline(5000);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

/// A top-level window holding `node`'s widget at `rect`, shown and exposed. The node gets its
/// widget back, parentless, when the window goes.
class NodeWindow {
public:
    NodeWindow(ui::UI_Node& node, const kelcore::geom::RectT<float>& rect) : node(node) {
        window.resize(static_cast<int>(rect.x + rect.width),
                      static_cast<int>(rect.y + rect.height));
        node.GetWidget()->setParent(&window);
        node.UI_SetLocalRectF(rect);
        node.UI_Show(true);
        window.show();
        exposed = QTest::qWaitForWindowExposed(&window);
        window.activateWindow();
    }
    ~NodeWindow() {
        if (QWidget* widget = node.GetWidget()) {
            widget->hide();
            widget->setParent(nullptr);
        }
    }
    NodeWindow(const NodeWindow&) = delete;
    NodeWindow& operator=(const NodeWindow&) = delete;

    QWidget& Window() { return window; }
    bool IsExposed() const { return exposed; }

private:
    ui::UI_Node& node;
    QWidget window;
    bool exposed = false;
};

}  // namespace kelui::tests
