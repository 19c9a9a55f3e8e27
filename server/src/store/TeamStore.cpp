#include "store/TeamStore.h"

#include "security/Random.h"
#include "store/StoreCore.h"
#include "store/StoreError.h"
#include "store/Transaction.h"
#include "store/Validation.h"

namespace vantroserver::store {

namespace {

constexpr std::size_t kMaxNameLength = 200;

Team ReadTeam(const Statement& statement) {
    return Team{statement.ColumnText(0), statement.ColumnText(1), statement.ColumnText(2),
                TimestampFromMilliseconds(statement.ColumnInt(3))};
}

void RequireUser(Connection& connection, std::string_view userId) {
    if (!security::IsWellFormedId(userId) || !StoreCore::RowExists(connection, "users", userId)) {
        throw StoreError(StoreError::Kind::NotFound, "no user " + std::string(userId));
    }
}

// Puts the user in the team, and in the team's account when not there yet. Inside the
// caller's write transaction.
void Join(const StoreCore& core, Connection& connection, const std::string& accountId,
          std::string_view teamId, std::string_view userId) {
    const auto now = MillisecondsOf(core.Now());
    {
        Statement member =
            connection.Prepare("SELECT 1 FROM team_members WHERE team_id = ? AND user_id = ?");
        member.Bind(1, teamId).Bind(2, userId);
        if (member.Step()) {
            throw StoreError(StoreError::Kind::Conflict, "the user is already in the team");
        }
    }
    connection.Prepare("INSERT INTO team_members (team_id, user_id, created_at) VALUES (?, ?, ?)")
        .Bind(1, teamId)
        .Bind(2, userId)
        .Bind(3, now)
        .Run();
    connection
        .Prepare(
            "INSERT OR IGNORE INTO account_members (account_id, user_id, created_at) "
            "VALUES (?, ?, ?)")
        .Bind(1, accountId)
        .Bind(2, userId)
        .Bind(3, now)
        .Run();
    if (connection.Changes() > 0) {
        core.RecordChange(connection, ChangeKind::AccountList, userId);
    }
}

}  // namespace

TeamStore::TeamStore(std::shared_ptr<StoreCore> core) : core(std::move(core)) {}

Team TeamStore::Add(std::string_view accountId, std::string_view name,
                    const std::vector<std::string>& memberIds) {
    ValidateName("the team name", name, kMaxNameLength);
    Team team{security::NewId(), std::string(accountId), std::string(name), core->Now()};
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    if (!security::IsWellFormedId(accountId) ||
        !StoreCore::RowExists(*lease, "accounts", accountId)) {
        throw StoreError(StoreError::Kind::NotFound, "no account " + std::string(accountId));
    }
    lease->Prepare("INSERT INTO teams (id, account_id, name, created_at) VALUES (?, ?, ?, ?)")
        .Bind(1, team.id)
        .Bind(2, team.accountId)
        .Bind(3, team.name)
        .Bind(4, MillisecondsOf(team.createdAt))
        .Run();
    for (const std::string& userId : memberIds) {
        RequireUser(*lease, userId);
        Join(*core, *lease, team.accountId, team.id, userId);
    }
    core->RecordChange(*lease, ChangeKind::TeamList, team.accountId);
    transaction.Commit();
    return team;
}

void TeamStore::AddMember(std::string_view teamId, std::string_view userId) {
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    std::string accountId;
    {
        Statement team = lease->Prepare("SELECT account_id FROM teams WHERE id = ?");
        team.Bind(1, teamId);
        if (!security::IsWellFormedId(teamId) || !team.Step()) {
            throw StoreError(StoreError::Kind::NotFound, "no team " + std::string(teamId));
        }
        accountId = team.ColumnText(0);
    }
    RequireUser(*lease, userId);
    Join(*core, *lease, accountId, teamId, userId);
    core->RecordChange(*lease, ChangeKind::TeamList, accountId);
    transaction.Commit();
}

std::optional<Team> TeamStore::Find(std::string_view id) const {
    if (!security::IsWellFormedId(id)) {
        return std::nullopt;
    }
    auto lease = core->Acquire();
    Statement statement =
        lease->Prepare("SELECT id, account_id, name, created_at FROM teams WHERE id = ?");
    statement.Bind(1, id);
    if (!statement.Step()) {
        return std::nullopt;
    }
    return ReadTeam(statement);
}

bool TeamStore::IsMember(std::string_view teamId, std::string_view userId) const {
    auto lease = core->Acquire();
    Statement statement =
        lease->Prepare("SELECT 1 FROM team_members WHERE team_id = ? AND user_id = ?");
    statement.Bind(1, teamId).Bind(2, userId);
    return statement.Step();
}

Page<Team> TeamStore::ListForUser(std::string_view userId, std::string_view accountId,
                                  PageRequest page) const {
    Page<Team> result;
    auto lease = core->Acquire();
    Transaction transaction(*lease, Transaction::Mode::Read);
    {
        Statement count = lease->Prepare(
            "SELECT COUNT(*) FROM teams t JOIN team_members m ON m.team_id = t.id "
            "WHERE t.account_id = ?1 AND m.user_id = ?2");
        count.Bind(1, accountId).Bind(2, userId);
        count.Step();
        result.total = static_cast<std::uint64_t>(count.ColumnInt(0));
    }
    {
        Statement rows = lease->Prepare(
            "SELECT t.id, t.account_id, t.name, t.created_at FROM teams t "
            "JOIN team_members m ON m.team_id = t.id WHERE t.account_id = ?1 AND m.user_id = ?2 "
            "ORDER BY t.name, t.id LIMIT ?3 OFFSET ?4");
        rows.Bind(1, accountId).Bind(2, userId).Bind(3, SqlLimit(page)).Bind(4, SqlOffset(page));
        while (rows.Step()) {
            result.items.push_back(ReadTeam(rows));
        }
    }
    transaction.Commit();
    return result;
}

}  // namespace vantroserver::store
