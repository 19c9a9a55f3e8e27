// The fraction done of the current stage, encoding or upload. Held by the panel's view model;
// default 0.0. GetEncodingProgress and SetEncodingProgress (virtual, any thread),
// AddEncodingProgressBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(EncodingProgress, double, double);

}  // namespace vantrokelui
