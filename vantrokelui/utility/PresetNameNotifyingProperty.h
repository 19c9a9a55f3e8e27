// A preset's name as shown to the user. Held by an encoder preset; default empty.
// GetPresetName and SetPresetName (virtual, any thread), AddPresetNameBinding (main thread).
#pragma once

#include <kelcore/string/String.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(PresetName, kelcore::string::string,
                                     const kelcore::string::string&);

}  // namespace vantrokelui
