// A view: a node that takes part in layout. Stacks and screens are made of them; a plain
// UI_SubView is an empty, transparent area (what a section holds before its first screen).
// Main thread.
#pragma once

#include <kelui/ui/UI_Node.h>

namespace kelui::ui {

class UI_SubView : public UI_Node {
public:
    UI_SubView() = default;

protected:
    explicit UI_SubView(QWidget* widget) : UI_Node(widget) {}
};

}  // namespace kelui::ui
