// One clip of a sequence as the encoder renders it: a media file and the span of it that the
// sequence uses, in seconds from the file's start. A plain record, copied freely.
#pragma once

#include <string>

namespace sarvex::protocol {

struct Clip {
    std::string path;  ///< absolute path of the media file
    double in = 0.0;   ///< first second used
    double out = 0.0;  ///< the second after the last one used; greater than `in`

    bool operator==(const Clip&) const = default;
};

}  // namespace sarvex::protocol
