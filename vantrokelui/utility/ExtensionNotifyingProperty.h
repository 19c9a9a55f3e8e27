// The extension of a preset's output, without a dot. Held by an encoder preset; default empty.
// GetExtension and SetExtension (virtual, any thread), AddExtensionBinding (main thread).
#pragma once

#include <kelcore/string/String.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(Extension, kelcore::string::string,
                                     const kelcore::string::string&);

}  // namespace vantrokelui
