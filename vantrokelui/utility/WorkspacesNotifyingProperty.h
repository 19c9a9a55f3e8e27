// The workspaces of an account, sorted. Held by an account; default empty.
// GetWorkspaces and SetWorkspaces (virtual, any thread), AddWorkspacesBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class VantroWorkspace;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(Workspaces, utility::SharedPtrVector<VantroWorkspace>,
                                     const utility::SharedPtrVector<VantroWorkspace>&);

}  // namespace vantrokelui
