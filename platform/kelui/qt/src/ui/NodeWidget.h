// The widget of a plain node: transparent, tracks the mouse for enter/leave/move events, and
// paints its node's UI_Draw. Private to the toolkit; main thread.
#pragma once

#include <QWidget>

namespace kelui::ui {

class UI_Node;

class NodeWidget final : public QWidget {
    Q_OBJECT
public:
    explicit NodeWidget(UI_Node& node);
    /// The node dies before its widget is deleted: painting then stops.
    void DetachNode() { node = nullptr; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    UI_Node* node;
};

}  // namespace kelui::ui
