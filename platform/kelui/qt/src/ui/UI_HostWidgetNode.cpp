#include <kelui/ui/UI_HostWidgetNode.h>

namespace kelui::ui {

UI_HostWidgetNode::UI_HostWidgetNode(QWidget* widget) : UI_Node(widget, WrapTag{}) {}

void UI_HostWidgetNode::RefreshFromWidget() {
    SyncRectFromWrappedWidget();
}

}  // namespace kelui::ui
