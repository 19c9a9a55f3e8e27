// A pointer event that came from a mouse (or a touchpad acting as one): what custom mouse
// functions installed with UI_Node::UI_AddCustomMouseEventFunction receive. Main thread.
#pragma once

#include <kelui/ui/PointerEvent.h>

namespace kelui::ui {

class MouseEvent final : public PointerEvent {
public:
    using PointerEvent::PointerEvent;
};

}  // namespace kelui::ui
