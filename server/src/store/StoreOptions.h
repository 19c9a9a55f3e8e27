// How a Store behaves beyond its file: the clock it stamps rows and checks expiry with, the
// password hashing cost, the pool's busy timeout. A value read at open; any thread.
#pragma once

#include <functional>

#include "security/PasswordHasher.h"
#include "store/Database.h"
#include "store/Timestamp.h"

namespace vantroserver::store {

struct StoreOptions {
    /// PBKDF2 iterations for new password hashes. Tests lower it to keep the suite fast; the
    /// default stays slow on purpose (see PasswordHasher::kDefaultIterations).
    unsigned passwordIterations = security::PasswordHasher::kDefaultIterations;
    /// Now; the system clock when empty. Tests drive code and token expiry through it.
    std::function<Timestamp()> clock;
    DatabaseOptions database;
};

}  // namespace vantroserver::store
