// The address of the active sequence's review link. Held by the panel's view model; default empty.
// GetReviewLinkURL and SetReviewLinkURL (virtual, any thread), AddReviewLinkURLBinding (main
// thread).
#pragma once

#include <kelcore/string/String.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(ReviewLinkURL, kelcore::string::string,
                                     const kelcore::string::string&);

}  // namespace vantrokelui
