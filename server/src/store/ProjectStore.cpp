#include "store/ProjectStore.h"

#include "security/Random.h"
#include "store/AssetStore.h"
#include "store/StoreCore.h"
#include "store/StoreError.h"
#include "store/Transaction.h"
#include "store/Validation.h"

namespace vantroserver::store {

namespace {

constexpr const char* kColumns =
    "p.id, p.team_id, p.account_id, p.name, p.root_asset_id, p.created_at";

Project ReadProject(const Statement& statement) {
    return Project{statement.ColumnText(0), statement.ColumnText(1),
                   statement.ColumnText(2), statement.ColumnText(3),
                   statement.ColumnText(4), TimestampFromMilliseconds(statement.ColumnInt(5))};
}

}  // namespace

ProjectStore::ProjectStore(std::shared_ptr<StoreCore> core) : core(std::move(core)) {}

Project ProjectStore::Add(std::string_view teamId, std::string_view name) {
    // The root folder carries the project's name, so the name obeys the asset rules.
    ValidateName("the project name", name, AssetStore::kMaxNameLength, false);
    Project project{security::NewId(), std::string(teamId), {},
                    std::string(name), security::NewId(),   core->Now()};
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    {
        Statement team = lease->Prepare("SELECT account_id FROM teams WHERE id = ?");
        team.Bind(1, teamId);
        if (!security::IsWellFormedId(teamId) || !team.Step()) {
            throw StoreError(StoreError::Kind::NotFound, "no team " + std::string(teamId));
        }
        project.accountId = team.ColumnText(0);
    }
    const auto now = MillisecondsOf(project.createdAt);
    lease
        ->Prepare(
            "INSERT INTO projects (id, team_id, account_id, name, root_asset_id, "
            "created_at) VALUES (?, ?, ?, ?, ?, ?)")
        .Bind(1, project.id)
        .Bind(2, project.teamId)
        .Bind(3, project.accountId)
        .Bind(4, project.name)
        .Bind(5, project.rootAssetId)
        .Bind(6, now)
        .Run();
    lease
        ->Prepare(
            "INSERT INTO assets (id, project_id, account_id, parent_id, name, type, "
            "filesize, created_at) VALUES (?, ?, ?, NULL, ?, 'folder', 0, ?)")
        .Bind(1, project.rootAssetId)
        .Bind(2, project.id)
        .Bind(3, project.accountId)
        .Bind(4, project.name)
        .Bind(5, now)
        .Run();
    core->RecordChange(*lease, ChangeKind::ProjectList, project.teamId);
    transaction.Commit();
    return project;
}

void ProjectStore::Share(std::string_view projectId, std::string_view userId) {
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    std::string accountId;
    {
        Statement project = lease->Prepare("SELECT account_id FROM projects WHERE id = ?");
        project.Bind(1, projectId);
        if (!security::IsWellFormedId(projectId) || !project.Step()) {
            throw StoreError(StoreError::Kind::NotFound, "no project " + std::string(projectId));
        }
        accountId = project.ColumnText(0);
    }
    if (!security::IsWellFormedId(userId) || !StoreCore::RowExists(*lease, "users", userId)) {
        throw StoreError(StoreError::Kind::NotFound, "no user " + std::string(userId));
    }
    bool sawAccount = false;
    {
        Statement seen = lease->Prepare(
            "SELECT EXISTS (SELECT 1 FROM account_members WHERE account_id = ?1 AND user_id = ?2) "
            "OR EXISTS (SELECT 1 FROM project_shares s JOIN projects p ON p.id = s.project_id "
            "WHERE p.account_id = ?1 AND s.user_id = ?2)");
        seen.Bind(1, accountId).Bind(2, userId);
        seen.Step();
        sawAccount = seen.ColumnInt(0) != 0;
    }
    {
        Statement shared =
            lease->Prepare("SELECT 1 FROM project_shares WHERE project_id = ? AND user_id = ?");
        shared.Bind(1, projectId).Bind(2, userId);
        if (shared.Step()) {
            throw StoreError(StoreError::Kind::Conflict,
                             "the project is already shared with the user");
        }
    }
    lease->Prepare("INSERT INTO project_shares (project_id, user_id, created_at) VALUES (?, ?, ?)")
        .Bind(1, projectId)
        .Bind(2, userId)
        .Bind(3, MillisecondsOf(core->Now()))
        .Run();
    core->RecordChange(*lease, ChangeKind::ProjectList, accountId);
    if (!sawAccount) {
        core->RecordChange(*lease, ChangeKind::AccountList, userId);
    }
    transaction.Commit();
}

std::optional<Project> ProjectStore::Find(std::string_view id) const {
    if (!security::IsWellFormedId(id)) {
        return std::nullopt;
    }
    auto lease = core->Acquire();
    Statement statement =
        lease->Prepare(std::string("SELECT ") + kColumns + " FROM projects p WHERE p.id = ?");
    statement.Bind(1, id);
    if (!statement.Step()) {
        return std::nullopt;
    }
    return ReadProject(statement);
}

Page<Project> ProjectStore::ListForTeam(std::string_view teamId, PageRequest page) const {
    Page<Project> result;
    auto lease = core->Acquire();
    Transaction transaction(*lease, Transaction::Mode::Read);
    {
        Statement count = lease->Prepare("SELECT COUNT(*) FROM projects WHERE team_id = ?");
        count.Bind(1, teamId);
        count.Step();
        result.total = static_cast<std::uint64_t>(count.ColumnInt(0));
    }
    {
        Statement rows = lease->Prepare(std::string("SELECT ") + kColumns +
                                        " FROM projects p WHERE p.team_id = ?1 "
                                        "ORDER BY p.name, p.id LIMIT ?2 OFFSET ?3");
        rows.Bind(1, teamId).Bind(2, SqlLimit(page)).Bind(3, SqlOffset(page));
        while (rows.Step()) {
            result.items.push_back(ReadProject(rows));
        }
    }
    transaction.Commit();
    return result;
}

Page<Project> ProjectStore::ListSharedWith(std::string_view userId, std::string_view accountId,
                                           PageRequest page) const {
    Page<Project> result;
    auto lease = core->Acquire();
    Transaction transaction(*lease, Transaction::Mode::Read);
    {
        Statement count = lease->Prepare(
            "SELECT COUNT(*) FROM projects p JOIN project_shares s ON s.project_id = p.id "
            "WHERE p.account_id = ?1 AND s.user_id = ?2");
        count.Bind(1, accountId).Bind(2, userId);
        count.Step();
        result.total = static_cast<std::uint64_t>(count.ColumnInt(0));
    }
    {
        Statement rows =
            lease->Prepare(std::string("SELECT ") + kColumns +
                           " FROM projects p JOIN project_shares s ON s.project_id = p.id "
                           "WHERE p.account_id = ?1 AND s.user_id = ?2 "
                           "ORDER BY p.name, p.id LIMIT ?3 OFFSET ?4");
        rows.Bind(1, accountId).Bind(2, userId).Bind(3, SqlLimit(page)).Bind(4, SqlOffset(page));
        while (rows.Step()) {
            result.items.push_back(ReadProject(rows));
        }
    }
    transaction.Commit();
    return result;
}

}  // namespace vantroserver::store
