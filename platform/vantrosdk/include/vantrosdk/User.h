// The signed-in user as the service describes them (GET /v2/me). A plain value, filled leniently:
// a member the answer lacks, or holds with another type, stays empty. Any thread.
#pragma once

#include <string>

#include <vantrocommon/Guid.h>

namespace vantrosdk {

struct User {
    vantrocommon::Guid id;
    std::string name;
    std::string username;
    std::string email;
};

}  // namespace vantrosdk
