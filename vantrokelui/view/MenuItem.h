// One entry of a screen's header menu: what it says, whether it can be chosen, and what choosing
// it does. A plain record; the label is display text, already localised.
#pragma once

#include <functional>

#include <kelcore/string/String.h>

namespace vantrokelui::view {

struct MenuItem {
    std::function<void()> action;
    bool enabled = true;
    kelcore::string::string label;
};

}  // namespace vantrokelui::view
