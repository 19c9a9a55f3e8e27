// The signed-in user as the service describes them. A plain value; any thread.
#pragma once

#include <string>

#include <kelcore/utility/Guid.h>

namespace vantro::v2 {

struct User {
    kelcore::utility::Guid id;
    std::string name;
    std::string username;
    std::string email;
};

}  // namespace vantro::v2
