// The sign-in screen shows its policy label. Held by the sign-in view model; default from
// configuration. GetPolicyVisible and SetPolicyVisible (virtual, any thread),
// AddPolicyVisibleBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui::viewmodel {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(PolicyVisible, bool, bool);

}  // namespace vantrokelui::viewmodel
