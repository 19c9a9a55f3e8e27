// A team inside an account. A value read from the store; any thread.
#pragma once

#include <string>

#include "store/Timestamp.h"

namespace vantroserver::store {

struct Team {
    std::string id;
    std::string accountId;
    std::string name;
    Timestamp createdAt;
};

}  // namespace vantroserver::store
