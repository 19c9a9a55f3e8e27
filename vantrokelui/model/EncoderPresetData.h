// One encoder preset as the host hands it in (ShareManager::SetEncoderPresets). Same fields, in
// the same order, as EncoderPresetAttributes, the form stored with a sequence. A plain value.
#pragma once

#include <kelcore/string/String.h>

namespace vantrokelui::model {

struct EncoderPresetData {
    kelcore::string::string presetName;     ///< name shown to the user
    kelcore::string::string presetPath;     ///< the encoder's preset file, handed back to the host
    kelcore::string::string fileExtension;  ///< extension of the encoder's output, without a dot

    friend bool operator==(const EncoderPresetData&, const EncoderPresetData&) = default;
};

}  // namespace vantrokelui::model
