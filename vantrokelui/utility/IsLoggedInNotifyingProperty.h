// The user is signed in. Held by the panel's view model and the sign-in view model; default false.
// GetIsLoggedIn and SetIsLoggedIn (virtual, any thread), AddIsLoggedInBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(IsLoggedIn, bool, bool);

}  // namespace vantrokelui
