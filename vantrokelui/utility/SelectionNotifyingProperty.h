// The committed folder that shares go to. Held by the user; default null.
// GetSelection and SetSelection (virtual, any thread), AddSelectionBinding (main thread).
#pragma once

#include <memory>

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class VantroFolder;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(Selection, std::shared_ptr<VantroFolder>,
                                     const std::shared_ptr<VantroFolder>&);

}  // namespace vantrokelui
