// Teams inside accounts and their members. Part of a Store; any thread. Writes record
// `team-list` changes for the account (and `account-list` for a user who joins the account
// by joining a team).
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/Page.h"
#include "store/Team.h"

namespace vantroserver::store {

class StoreCore;

class TeamStore {
public:
    explicit TeamStore(std::shared_ptr<StoreCore> core);

    /// Creates the team with `memberIds` in it; a member who is not yet in the account joins
    /// it. Throws StoreError: Invalid for a bad name, NotFound for an unknown account or user.
    Team Add(std::string_view accountId, std::string_view name,
             const std::vector<std::string>& memberIds = {});

    /// Adds `userId` to the team (and to its account when not yet a member). Throws StoreError:
    /// NotFound, or Conflict when already in the team.
    void AddMember(std::string_view teamId, std::string_view userId);

    std::optional<Team> Find(std::string_view id) const;
    bool IsMember(std::string_view teamId, std::string_view userId) const;

    /// The teams of `accountId` that `userId` is in, by name then id.
    Page<Team> ListForUser(std::string_view userId, std::string_view accountId,
                           PageRequest page) const;

private:
    std::shared_ptr<StoreCore> core;
};

}  // namespace vantroserver::store
