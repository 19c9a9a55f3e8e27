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
/// How long an ordinary notice ("Copied") stays, in seconds.
inline constexpr double kToastManager_DefaultDurationInSeconds = 4.0;

}  // namespace kelui::sharedui
