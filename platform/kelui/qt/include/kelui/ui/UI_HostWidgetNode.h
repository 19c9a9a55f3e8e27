// A node over a widget that the host application owns: how a plain Qt application hands the
// toolkit an anchor (its header's Share button) or a parent window. The node never deletes,
// moves, reparents or hides the widget; it reads the widget's geometry as its rectangle and its
// window as the top of the tree. A widget deleted by its owner leaves the node empty (GetWidget
// answers null). Main thread.
//
//   boost::intrusive_ptr<kelui::ui::UI_HostWidgetNode> anchor(
//       new kelui::ui::UI_HostWidgetNode(shareButton));
//   workflow->SetAnchorNode(anchor);
#pragma once

#include <kelui/ui/UI_Node.h>

namespace kelui::ui {

class UI_HostWidgetNode final : public UI_Node {
public:
    /// Wraps `widget`, which stays its owner's.
    explicit UI_HostWidgetNode(QWidget* widget);

    /// Reads the widget's present geometry (it moves with the host's layouts).
    void RefreshFromWidget();
};

}  // namespace kelui::ui
