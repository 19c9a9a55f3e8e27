// The display name of a node of the cloud tree. Held by a cloud node; default empty.
// GetName and SetName (virtual, any thread), AddNameBinding (main thread).
#pragma once

#include <kelcore/string/String.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(Name, kelcore::string::string, const kelcore::string::string&);

}  // namespace vantrokelui
