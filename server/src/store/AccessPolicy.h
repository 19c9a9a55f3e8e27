// Who may see what. A user sees the accounts they belong to or have a project shared with them
// in, the teams they are in, the projects of those teams and the projects shared with them, and
// the assets inside the projects they see. Part of a Store; any thread. Unknown and malformed
// ids are simply not visible.
#pragma once

#include <memory>
#include <string_view>

#include "store/Change.h"

namespace vantroserver::store {

class StoreCore;

class AccessPolicy {
public:
    explicit AccessPolicy(std::shared_ptr<StoreCore> core);

    bool CanSeeAccount(std::string_view userId, std::string_view accountId) const;
    bool CanSeeTeam(std::string_view userId, std::string_view teamId) const;
    bool CanSeeProject(std::string_view userId, std::string_view projectId) const;
    bool CanSeeAsset(std::string_view userId, std::string_view assetId) const;

    /// Whether the list that `change` names is one `userId` may see (for the event stream):
    /// their own account list, a visible account's teams, a visible team's projects or a
    /// visible account's shared projects, a visible folder's children.
    bool CanSeeChange(std::string_view userId, const Change& change) const;

private:
    std::shared_ptr<StoreCore> core;
};

}  // namespace vantroserver::store
