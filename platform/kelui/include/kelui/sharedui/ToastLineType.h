// How a toast lays out its text. Plain values; any thread.
#pragma once

#include <cstdint>

namespace kelui::sharedui {

enum class ToastLineType : std::int32_t {
    SingleLine = 0,  // one line, cut with an ellipsis when too long
    MultiLine = 1,   // wraps
};

}  // namespace kelui::sharedui
