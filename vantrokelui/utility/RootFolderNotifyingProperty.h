// The folder at the top of a project. Held by a project; default null; the owner refuses null.
// GetRootFolder and SetRootFolder (virtual, any thread), AddRootFolderBinding (main thread).
#pragma once

#include <memory>

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class VantroFolder;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(RootFolder, std::shared_ptr<VantroFolder>,
                                     const std::shared_ptr<VantroFolder>&);

}  // namespace vantrokelui
