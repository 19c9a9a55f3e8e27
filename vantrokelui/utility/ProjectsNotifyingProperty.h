// The projects of a workspace, sorted. Held by a workspace; default empty.
// GetProjects and SetProjects (virtual, any thread), AddProjectsBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class VantroProject;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(Projects, utility::SharedPtrVector<VantroProject>,
                                     const utility::SharedPtrVector<VantroProject>&);

}  // namespace vantrokelui
