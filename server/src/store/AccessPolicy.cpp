#include "store/AccessPolicy.h"

#include "security/Random.h"
#include "store/StoreCore.h"

namespace vantroserver::store {

namespace {

constexpr const char* kProjectVisible =
    "EXISTS (SELECT 1 FROM projects p JOIN team_members m ON m.team_id = p.team_id "
    "WHERE p.id = ?1 AND m.user_id = ?2) "
    "OR EXISTS (SELECT 1 FROM project_shares WHERE project_id = ?1 AND user_id = ?2)";

bool Ask(const StoreCore& core, const std::string& sql, std::string_view first,
         std::string_view userId) {
    auto lease = core.Acquire();
    Statement statement = lease->Prepare(sql);
    statement.Bind(1, first).Bind(2, userId);
    return statement.Step() && statement.ColumnInt(0) != 0;
}

}  // namespace

AccessPolicy::AccessPolicy(std::shared_ptr<StoreCore> core) : core(std::move(core)) {}

bool AccessPolicy::CanSeeAccount(std::string_view userId, std::string_view accountId) const {
    if (!security::IsWellFormedId(accountId)) {
        return false;
    }
    return Ask(*core,
               "SELECT EXISTS (SELECT 1 FROM account_members WHERE account_id = ?1 "
               "AND user_id = ?2) OR EXISTS (SELECT 1 FROM project_shares s "
               "JOIN projects p ON p.id = s.project_id WHERE p.account_id = ?1 "
               "AND s.user_id = ?2)",
               accountId, userId);
}

bool AccessPolicy::CanSeeTeam(std::string_view userId, std::string_view teamId) const {
    if (!security::IsWellFormedId(teamId)) {
        return false;
    }
    return Ask(*core,
               "SELECT EXISTS (SELECT 1 FROM team_members WHERE team_id = ?1 AND user_id = ?2)",
               teamId, userId);
}

bool AccessPolicy::CanSeeProject(std::string_view userId, std::string_view projectId) const {
    if (!security::IsWellFormedId(projectId)) {
        return false;
    }
    return Ask(*core, std::string("SELECT ") + kProjectVisible, projectId, userId);
}

bool AccessPolicy::CanSeeAsset(std::string_view userId, std::string_view assetId) const {
    if (!security::IsWellFormedId(assetId)) {
        return false;
    }
    // The asset's project stands in for ?1 of the project check.
    return Ask(*core,
               "SELECT EXISTS (SELECT 1 FROM assets a JOIN projects p ON p.id = a.project_id "
               "JOIN team_members m ON m.team_id = p.team_id WHERE a.id = ?1 AND m.user_id = ?2) "
               "OR EXISTS (SELECT 1 FROM assets a JOIN project_shares s "
               "ON s.project_id = a.project_id WHERE a.id = ?1 AND s.user_id = ?2)",
               assetId, userId);
}

bool AccessPolicy::CanSeeChange(std::string_view userId, const Change& change) const {
    switch (change.kind) {
        case ChangeKind::AccountList:
            return change.parentId == userId;
        case ChangeKind::TeamList:
            return CanSeeAccount(userId, change.parentId);
        case ChangeKind::ProjectList:
            // Either a team's projects or an account's shared projects.
            return CanSeeTeam(userId, change.parentId) || CanSeeAccount(userId, change.parentId);
        case ChangeKind::AssetList:
            return CanSeeAsset(userId, change.parentId);
    }
    return false;
}

}  // namespace vantroserver::store
