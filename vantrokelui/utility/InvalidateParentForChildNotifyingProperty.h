// Asks the panel's host to lay out again after a view changed size. Held by the panel's view model;
// default false. GetInvalidateParentForChild and SetInvalidateParentForChild (virtual, any thread),
// AddInvalidateParentForChildBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(InvalidateParentForChild, bool, bool);

}  // namespace vantrokelui
