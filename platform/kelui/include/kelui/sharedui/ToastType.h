// How a toast looks: the kind of news it brings. Plain values; any thread.
#pragma once

#include <cstdint>

namespace kelui::sharedui {

enum class ToastType : std::int32_t {
    Information = 0,
    Success = 1,
    Warning = 2,
    Error = 3,
};

/// The priority of an ordinary toast; a higher one is shown before it.
inline constexpr std::int32_t kToastManager_DefaultPriority = 50;

}  // namespace kelui::sharedui
