// The active sequence has changed since its last share. Held by the panel's view model; default
// false. GetActiveAssetDirty and SetActiveAssetDirty (virtual, any thread),
// AddActiveAssetDirtyBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(ActiveAssetDirty, bool, bool);

}  // namespace vantrokelui
