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

namespace vantrokelui::view::detail {

// The panel's geometry: a 340-wide view with its content in a column from x = 15 to x = 325,
// the header row at (15, 10) and a bottom margin of 15.
inline constexpr float kViewWidth = 340.0f;
inline constexpr float kColumnLeft = 15.0f;
inline constexpr float kColumnWidth = 310.0f;
inline constexpr float kColumnRight = kColumnLeft + kColumnWidth;
inline constexpr float kLabelTop = 10.0f;
inline constexpr float kBottomMargin = 15.0f;

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
