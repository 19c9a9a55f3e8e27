// The committed folder's path as shown to the user. Held by the user; default empty.
// GetSelectionPath and SetSelectionPath (virtual, any thread), AddSelectionPathBinding (main
// thread).
#pragma once

#include <kelcore/string/String.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(SelectionPath, kelcore::string::string,
                                     const kelcore::string::string&);

}  // namespace vantrokelui
