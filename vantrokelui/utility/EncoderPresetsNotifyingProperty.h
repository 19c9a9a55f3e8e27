// The encoder presets that the host offers, in its order. Held by the panel's view model; default
// empty. GetEncoderPresets and SetEncoderPresets (virtual, any thread), AddEncoderPresetsBinding
// (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class EncoderPresetModel;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(EncoderPresets, utility::SharedPtrVector<EncoderPresetModel>,
                                     const utility::SharedPtrVector<EncoderPresetModel>&);

}  // namespace vantrokelui
