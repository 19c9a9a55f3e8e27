// How far a node has loaded its children. Held by a cloud node; default NotFetched.
// GetFetchChildrenState and SetFetchChildrenState (virtual, any thread),
// AddFetchChildrenStateBinding (main thread).
#pragma once

#include <vantrokelui/nodes/FetchChildrenState.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(FetchChildrenState, FetchChildrenState,
                                     const FetchChildrenState&);

}  // namespace vantrokelui
