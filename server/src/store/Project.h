// A project of a team, with the folder asset at its root. A value read from the store; any
// thread.
#pragma once

#include <string>

#include "store/Timestamp.h"

namespace vantroserver::store {

struct Project {
    std::string id;
    std::string teamId;
    std::string accountId;
    std::string name;
    std::string rootAssetId;
    Timestamp createdAt;
};

}  // namespace vantroserver::store
