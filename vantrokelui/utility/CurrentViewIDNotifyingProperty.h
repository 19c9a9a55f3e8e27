// The panel's current screen: the panel's state. Held by the panel's view model; default None.
// GetCurrentViewID and SetCurrentViewID (virtual, any thread), AddCurrentViewIDBinding (main
// thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>
#include <vantrokelui/viewmodel/ShareForReviewViewID.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(CurrentViewID, ShareForReviewViewID, ShareForReviewViewID);

}  // namespace vantrokelui
