// The service can be reached. Held by the panel's view model; default false.
// GetIsNetworkConnected and SetIsNetworkConnected (virtual, any thread),
// AddIsNetworkConnectedBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(IsNetworkConnected, bool, bool);

}  // namespace vantrokelui
