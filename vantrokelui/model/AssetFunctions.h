// The functions through which the host lends the library its document model and its encoder.
// The host injects them into ShareManager (and the panel's view model) before the first share;
// the library holds no reference to the host's own types. Each may be called from the main
// thread or from the cloud library's callback thread, so the host makes them safe on any thread.
#pragma once

#include <functional>

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>

namespace vantrokelui::model {

/// Fills project and sequence with those active in the host now; the result is not looked at.
using GetActiveSequenceFunction =
    std::function<bool(kelcore::utility::Guid& project, kelcore::utility::Guid& sequence)>;

/// Reads a value stored with a sequence: true and `value` filled when the key is there.
using GetSequenceValueFunction = std::function<bool(
    const kelcore::utility::Guid& project, const kelcore::utility::Guid& sequence,
    const kelcore::string::string& key, kelcore::string::string& value)>;

/// Stores a value with a sequence, so that it is saved with the project.
using SetSequenceValueFunction = std::function<bool(
    const kelcore::utility::Guid& project, const kelcore::utility::Guid& sequence,
    const kelcore::string::string& key, const kelcore::string::string& value)>;

/// Removes a value stored with a sequence.
using ClearSequenceValueFunction =
    std::function<bool(const kelcore::utility::Guid& project,
                       const kelcore::utility::Guid& sequence, const kelcore::string::string& key)>;

/// Queues a render of the active sequence to `outputFilePath`; the host reports by `jobID`.
using AssetProcessingFunction = std::function<void(const kelcore::string::string& outputFilePath,
                                                   const kelcore::string::string& jobID,
                                                   const kelcore::string::string& presetPath)>;

/// Removes the render of `jobID` from the encoder, queued or running.
using CancelProcessingFunction = std::function<void(const kelcore::string::string& jobID)>;

}  // namespace vantrokelui::model
