// A client's request to render: the job's id (chosen by the client, unique among its jobs),
// the sequence, the preset file and the path the finished file must have.
#pragma once

#include <string>

#include "SequenceDescription.h"

namespace sarvex::protocol {

struct SubmitRequest {
    std::string jobID;
    SequenceDescription sequence;
    std::string presetPath;
    std::string outputPath;

    bool operator==(const SubmitRequest&) const = default;
};

}  // namespace sarvex::protocol
