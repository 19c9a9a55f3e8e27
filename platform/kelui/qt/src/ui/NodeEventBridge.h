// Turns the Qt mouse events of a node's widget into the node's pointer events (custom mouse
// functions first, then UI_DoPointerEvent). Owned by its node; main thread.
#pragma once

#include <QObject>

namespace kelui::ui {
class UI_Node;
}

namespace kelui::ui::detail {

class NodeEventBridge final : public QObject {
    Q_OBJECT
public:
    explicit NodeEventBridge(UI_Node& node) : node(node) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    UI_Node& node;
};

}  // namespace kelui::ui::detail
