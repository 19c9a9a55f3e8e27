// The picture shown for the user or an account. Held by the user and each account; default null.
// GetIcon and SetIcon (virtual, any thread), AddIconBinding (main thread).
#pragma once

#include <boost/intrusive_ptr.hpp>

#include <kelui/limner/ImageInterface.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(Icon, boost::intrusive_ptr<limner::ImageInterface>,
                                     const boost::intrusive_ptr<limner::ImageInterface>&);

}  // namespace vantrokelui
