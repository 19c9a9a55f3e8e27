// The colour that stands for the user. Held by the user; default all channels 0.
// GetColor and SetColor (virtual, any thread), AddColorBinding (main thread).
#pragma once

#include <kelui/limner/ColorRGBA.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(Color, limner::ColorRGBA, const limner::ColorRGBA&);

}  // namespace vantrokelui
