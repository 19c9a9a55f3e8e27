// The preset chosen for a sequence, in the form stored with the sequence (as JSON, see
// SequenceSettings.h) and carried through a submission. A plain value.
#pragma once

#include <kelcore/string/String.h>

namespace vantrokelui::model {

struct EncoderPresetAttributes {
    kelcore::string::string presetName;     ///< "preset_name" in the stored form
    kelcore::string::string presetPath;     ///< "preset_path"
    kelcore::string::string fileExtension;  ///< "file_extension", without a dot

    friend bool operator==(const EncoderPresetAttributes&,
                           const EncoderPresetAttributes&) = default;
};

}  // namespace vantrokelui::model
