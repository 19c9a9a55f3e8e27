// The name of the sequence that is active in the host. Held by the panel's view model and the
// sign-in view model; default empty. GetActiveAssetName and SetActiveAssetName (virtual, any
// thread), AddActiveAssetNameBinding (main thread).
#pragma once

#include <kelcore/string/String.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(ActiveAssetName, kelcore::string::string,
                                     const kelcore::string::string&);

}  // namespace vantrokelui
