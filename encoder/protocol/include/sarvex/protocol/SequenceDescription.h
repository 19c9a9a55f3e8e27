// What the encoder renders: the clips of a sequence in playing order and the frame the result
// has. Clips of another size are fitted into the frame and padded; clips without sound play
// silence. A plain record, copied freely; the host builds it from its project file.
#pragma once

#include <string>
#include <vector>

#include "Clip.h"

namespace sarvex::protocol {

struct SequenceDescription {
    std::string name;
    int width = 1280;
    int height = 720;
    double frameRate = 25.0;
    std::vector<Clip> clips;

    /// The sum of the clips' spans in seconds: what a render's progress is measured against.
    double Duration() const;

    bool operator==(const SequenceDescription&) const = default;
};

}  // namespace sarvex::protocol
