// The next share makes a new link instead of updating the old one. Held by the panel's view model;
// default false. GetCreateNewLinkMode and SetCreateNewLinkMode (virtual, any thread),
// AddCreateNewLinkModeBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(CreateNewLinkMode, bool, bool);

}  // namespace vantrokelui
