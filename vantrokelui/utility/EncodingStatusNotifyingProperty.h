// Where the active sequence's share job stands. Held by the panel's view model; default None.
// GetEncodingStatus and SetEncodingStatus (virtual, any thread), AddEncodingStatusBinding (main
// thread).
#pragma once

#include <vantrokelui/model/EncodingStatus.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(EncodingStatus, EncodingStatus, EncodingStatus);

}  // namespace vantrokelui
