// A pointer event as a node sees it: what happened, with which button, where (in the node's own
// coordinates) and with which modifier keys. A plain value made by the toolkit from the Qt event;
// main thread.
//
//   bool MyRow::UI_DoPointerEvent(const PointerEvent& event) {
//       if (event.GetAction() == PointerEvent::kDown && event.GetButton() == 1) ...
#pragma once

#include <cstdint>

#include <kelcore/geom/PointT.h>

namespace kelui::ui {

class PointerEvent {
public:
    /// What happened. A press is 1, the pointer entering the node 3 and leaving it 5.
    enum Action : std::uint32_t {
        kNone = 0,
        kDown = 1,
        kUp = 2,
        kEnter = 3,
        kMove = 4,
        kLeave = 5,
        kDoubleClick = 6,
    };
    /// Buttons: 1 primary, 2 secondary, 3 middle; 0 for moves and crossings.
    PointerEvent(Action action, int button, kelcore::geom::PointT<float> position,
                 std::uint32_t modifiers)
        : action(action), button(button), position(position), modifiers(modifiers) {}
    virtual ~PointerEvent() = default;

    std::uint32_t GetAction() const { return action; }
    int GetButton() const { return button; }
    /// In the coordinates of the node that receives the event.
    kelcore::geom::PointT<float> GetPosition() const { return position; }
    /// Qt's keyboard modifier bits at the time of the event.
    std::uint32_t GetModifiers() const { return modifiers; }

private:
    Action action;
    int button;
    kelcore::geom::PointT<float> position;
    std::uint32_t modifiers;
};

}  // namespace kelui::ui
