// The files inside a folder, sorted. Held by a folder; default empty.
// GetFiles and SetFiles (virtual, any thread), AddFilesBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class VantroFile;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(Files, utility::SharedPtrVector<VantroFile>,
                                     const utility::SharedPtrVector<VantroFile>&);

}  // namespace vantrokelui
