// Accounts, their members and their storage. Part of a Store; any thread. Writes record
// `account-list` changes for the users concerned.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "store/Account.h"
#include "store/Page.h"

namespace vantroserver::store {

class StoreCore;

class AccountStore {
public:
    explicit AccountStore(std::shared_ptr<StoreCore> core);

    /// Creates the account and makes `ownerId` its first member. Throws StoreError: Invalid for
    /// a bad name or a negative limit, NotFound for an unknown owner.
    Account Add(std::string_view name, std::string_view ownerId, std::int64_t storageLimit);

    /// Throws StoreError: NotFound for an unknown account or user, Conflict when already a
    /// member.
    void AddMember(std::string_view accountId, std::string_view userId);

    std::optional<Account> Find(std::string_view id) const;
    bool IsMember(std::string_view accountId, std::string_view userId) const;

    /// The accounts `userId` belongs to, and those where only projects are shared with them
    /// (member = false). Ordered by name, then id.
    Page<VisibleAccount> ListForUser(std::string_view userId, PageRequest page) const;

private:
    std::shared_ptr<StoreCore> core;
};

}  // namespace vantroserver::store
