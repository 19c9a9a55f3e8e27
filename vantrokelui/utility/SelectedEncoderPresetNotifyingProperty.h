// The preset that the next share uses. Held by the panel's view model; default null.
// GetSelectedEncoderPreset and SetSelectedEncoderPreset (virtual, any thread),
// AddSelectedEncoderPresetBinding (main thread).
#pragma once

#include <memory>

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class EncoderPresetModel;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(SelectedEncoderPreset, std::shared_ptr<EncoderPresetModel>,
                                     const std::shared_ptr<EncoderPresetModel>&);

}  // namespace vantrokelui
