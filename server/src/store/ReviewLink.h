// A review link of a project: a name, the unguessable token of its public URL and how many
// assets it holds. A value read from the store; any thread.
#pragma once

#include <cstdint>
#include <string>

#include "store/Timestamp.h"

namespace vantroserver::store {

struct ReviewLink {
    std::string id;
    std::string projectId;
    std::string creatorId;
    std::string name;
    std::string token;  ///< Base64url, 256 random bits; the last segment of the public URL.
    std::int64_t itemCount = 0;
    Timestamp createdAt;
};

}  // namespace vantroserver::store
