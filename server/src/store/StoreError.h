// What a store write refuses, with a message fit for an admin's terminal or a JSON error body.
// Reads that find nothing return std::nullopt instead. Thrown on the calling thread.
#pragma once

#include <stdexcept>
#include <string>

namespace vantroserver::store {

class StoreError : public std::runtime_error {
public:
    enum class Kind {
        NotFound,      ///< A referenced row (parent, owner, team ...) does not exist.
        Conflict,      ///< Unique value taken (username, client id, membership already there).
        Invalid,       ///< Bad value: empty or too long name, wrong parent type, negative size.
        StorageLimit,  ///< The account's storage limit would be exceeded.
        Database,      ///< SQLite failed (busy beyond the timeout, disk full, corrupt file).
    };

    StoreError(Kind kind, const std::string& message) : std::runtime_error(message), kind(kind) {}

    Kind GetKind() const { return kind; }

private:
    Kind kind;
};

}  // namespace vantroserver::store
