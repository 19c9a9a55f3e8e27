// The signed-in user, root of the cloud tree. Held by the panel's view model; default null until
// the view model makes one. GetUser and SetUser (virtual, any thread), AddUserBinding (main
// thread).
#pragma once

#include <memory>

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class VantroUser;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(User, std::shared_ptr<VantroUser>,
                                     const std::shared_ptr<VantroUser>&);

}  // namespace vantrokelui
