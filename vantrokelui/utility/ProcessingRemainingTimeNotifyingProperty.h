// The estimated seconds left of the current stage. Held by the panel's view model; default 0.0.
// GetProcessingRemainingTime and SetProcessingRemainingTime (virtual, any thread),
// AddProcessingRemainingTimeBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(ProcessingRemainingTime, double, double);

}  // namespace vantrokelui
