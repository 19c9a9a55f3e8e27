// The identity of a node of the cloud tree. Held by a cloud node; default the nil Guid.
// GetID and SetID (virtual, any thread), AddIDBinding (main thread).
#pragma once

#include <kelcore/utility/Guid.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(ID, kelcore::utility::Guid, const kelcore::utility::Guid&);

}  // namespace vantrokelui
