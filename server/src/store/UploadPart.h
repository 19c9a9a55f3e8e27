// One received part of an upload: its number (from 1), size and SHA-256 (lower-case hex).
// A value read from the store; any thread.
#pragma once

#include <cstdint>
#include <string>

#include "store/Timestamp.h"

namespace vantroserver::store {

struct UploadPart {
    std::int64_t number = 0;
    std::int64_t size = 0;
    std::string sha256;
    Timestamp receivedAt;
};

}  // namespace vantroserver::store
