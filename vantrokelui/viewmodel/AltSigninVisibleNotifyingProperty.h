// The sign-in screen offers the other sign-in. Held by the sign-in view model; default from
// configuration. GetAltSigninVisible and SetAltSigninVisible (virtual, any thread),
// AddAltSigninVisibleBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui::viewmodel {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(AltSigninVisible, bool, bool);

}  // namespace vantrokelui::viewmodel
