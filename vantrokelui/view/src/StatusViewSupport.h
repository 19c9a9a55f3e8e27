// What the status screens (no encoder, no sequence, offline, storage full, sign-in, debug) have
// in common: the panel's column, localised text, and callbacks that reach a node only while it
// lives. Private to the views' sources; main thread.
#pragma once

#include <functional>
#include <string_view>
#include <utility>

#include <kelcore/config/Localizer.h>
#include <kelcore/string/String.h>
#include <kelui/ui/UI_WeakNodePtr.h>

#include "ScreenLayout.h"

namespace vantrokelui::view::detail {

/// The localised text of `keyWithDefault` ("$$$/...=Default").
inline kelcore::string::string Localized(std::string_view keyWithDefault) {
    return kelcore::config::Localizer::Get().GetString(keyWithDefault);
}

/// Shows or hides `node` with each value, while it lives.
template <class Node>
std::function<void(bool)> BindShow(const boost::intrusive_ptr<Node>& node) {
    const kelui::ui::UI_WeakNodePtr<Node> weakNode(node);
    return [weakNode](bool show) {
        if (const auto locked = weakNode.Lock()) {
            locked->UI_Show(show);
        }
    };
}

}  // namespace vantrokelui::view::detail
