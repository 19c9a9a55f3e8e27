// The folders inside a folder, sorted. Held by a folder; default empty.
// GetFolders and SetFolders (virtual, any thread), AddFoldersBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class VantroFolder;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(Folders, utility::SharedPtrVector<VantroFolder>,
                                     const utility::SharedPtrVector<VantroFolder>&);

}  // namespace vantrokelui
