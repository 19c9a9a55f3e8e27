// A message that the toolkit sends to a node's handler (a paint, a resize, an image request).
// The core only passes pointers to it through; its contents belong to the toolkit's Qt side.
#pragma once

namespace kelui::ui {

class ConstMessage {
public:
    virtual ~ConstMessage() = default;

protected:
    ConstMessage() = default;
};

}  // namespace kelui::ui
