// An account (a plan with a storage limit), its owner and the storage its files use. A value
// read from the store; any thread.
#pragma once

#include <cstdint>
#include <string>

#include "store/Timestamp.h"

namespace vantroserver::store {

struct Account {
    std::string id;
    std::string name;
    std::string ownerId;
    std::int64_t storageLimit = 0;  ///< Bytes.
    std::int64_t storageUsed = 0;   ///< Bytes: the sum of the sizes of the account's files.
    Timestamp createdAt;
};

/// An account as one user sees it: a member, or someone who only has projects shared with them
/// in it.
struct VisibleAccount {
    Account account;
    bool member = false;
};

}  // namespace vantroserver::store
