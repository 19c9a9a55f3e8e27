// The path of a preset's encoder file, handed back to the host. Held by an encoder preset; default
// empty. GetPresetPath and SetPresetPath (virtual, any thread), AddPresetPathBinding (main thread).
#pragma once

#include <kelcore/string/String.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(PresetPath, kelcore::string::string,
                                     const kelcore::string::string&);

}  // namespace vantrokelui
