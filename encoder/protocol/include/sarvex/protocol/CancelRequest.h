// A client's request to drop a job, queued or rendering; its partial output is deleted.
#pragma once

#include <string>

namespace sarvex::protocol {

struct CancelRequest {
    std::string jobID;

    bool operator==(const CancelRequest&) const = default;
};

}  // namespace sarvex::protocol
