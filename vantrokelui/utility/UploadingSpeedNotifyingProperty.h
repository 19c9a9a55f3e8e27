// The upload speed in megabits per second. Held by the panel's view model; default 0.0.
// GetUploadingSpeed and SetUploadingSpeed (virtual, any thread), AddUploadingSpeedBinding (main
// thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(UploadingSpeed, double, double);

}  // namespace vantrokelui
