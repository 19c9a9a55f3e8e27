// Users and their passwords. Part of a Store; every method may be called from any thread.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "store/User.h"

namespace vantroserver::store {

class StoreCore;

struct NewUser {
    std::string username;  ///< 1 to 64 characters of [A-Za-z0-9._@-].
    std::string password;  ///< At least 1 character, at most 1024 bytes.
    std::string name;      ///< Display name; the username when empty.
    std::string email;     ///< Optional.
};

class UserStore {
public:
    explicit UserStore(std::shared_ptr<StoreCore> core);

    /// Throws StoreError: Invalid for a bad username or password, Conflict when taken.
    User Add(const NewUser& user);

    /// Nothing for an unknown or malformed id.
    std::optional<User> Find(std::string_view id) const;
    std::optional<User> FindByUsername(std::string_view username) const;

    /// The user when `password` is theirs; nothing otherwise. An unknown username costs the same
    /// hashing time as a wrong password, so timing does not tell which usernames exist.
    std::optional<User> Authenticate(std::string_view username, std::string_view password) const;

private:
    std::shared_ptr<StoreCore> core;
    // A hash checked for unknown usernames, made on first need with the store's cost.
    mutable std::once_flag decoyOnce;
    mutable std::string decoyHash;
};

}  // namespace vantroserver::store
