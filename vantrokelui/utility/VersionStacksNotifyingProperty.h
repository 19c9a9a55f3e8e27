// The version stacks inside a folder, sorted. Held by a folder; default empty.
// GetVersionStacks and SetVersionStacks (virtual, any thread), AddVersionStacksBinding (main
// thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class VantroVersionStack;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(VersionStacks, utility::SharedPtrVector<VantroVersionStack>,
                                     const utility::SharedPtrVector<VantroVersionStack>&);

}  // namespace vantrokelui
