#include "ui/NodeWidget.h"

#include <kelui/ui/UI_Node.h>

namespace kelui::ui {

NodeWidget::NodeWidget(UI_Node& node) : node(&node) {
    setMouseTracking(true);
    setAttribute(Qt::WA_Hover, true);
}

void NodeWidget::paintEvent(QPaintEvent* /*event*/) {
    if (node) {
        node->PaintWidget(*this);
    }
}

}  // namespace kelui::ui
