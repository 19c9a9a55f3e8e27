// The address of the selected project's settings page. Held by the user; default empty.
// GetSettingsURL and SetSettingsURL (virtual, any thread), AddSettingsURLBinding (main thread).
#pragma once

#include <kelcore/string/String.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(SettingsURL, kelcore::string::string,
                                     const kelcore::string::string&);

}  // namespace vantrokelui
