// A person who signs in. A value read from the store; any thread.
#pragma once

#include <string>

#include "store/Timestamp.h"

namespace vantroserver::store {

struct User {
    std::string id;
    std::string username;  ///< Unique; what the sign-in form asks for.
    std::string name;      ///< Display name; the username when none was given.
    std::string email;     ///< May be empty.
    Timestamp createdAt;
};

}  // namespace vantroserver::store
