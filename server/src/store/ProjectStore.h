// Projects of teams, their root folders, and projects shared with single users. Part of a
// Store; any thread. Writes record `project-list` changes for the team (or for the account when
// a project is shared) and `account-list` for a user who gains sight of an account by a share.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "store/Page.h"
#include "store/Project.h"

namespace vantroserver::store {

class StoreCore;

class ProjectStore {
public:
    explicit ProjectStore(std::shared_ptr<StoreCore> core);

    /// Creates the project and its root folder (named like the project). Throws StoreError:
    /// Invalid for a bad name, NotFound for an unknown team.
    Project Add(std::string_view teamId, std::string_view name);

    /// Shares the project with `userId`. Throws StoreError: NotFound, or Conflict when already
    /// shared with them.
    void Share(std::string_view projectId, std::string_view userId);

    std::optional<Project> Find(std::string_view id) const;

    /// All projects of `teamId`, by name then id (the caller checks the team is visible).
    Page<Project> ListForTeam(std::string_view teamId, PageRequest page) const;

    /// The projects of `accountId` shared with `userId`, by name then id.
    Page<Project> ListSharedWith(std::string_view userId, std::string_view accountId,
                                 PageRequest page) const;

private:
    std::shared_ptr<StoreCore> core;
};

}  // namespace vantroserver::store
