#include "store/AccountStore.h"

#include "security/Random.h"
#include "store/StoreCore.h"
#include "store/StoreError.h"
#include "store/Transaction.h"
#include "store/Validation.h"

namespace vantroserver::store {

namespace {

constexpr std::size_t kMaxNameLength = 200;

Account ReadAccount(const Statement& statement) {
    return Account{statement.ColumnText(0), statement.ColumnText(1),
                   statement.ColumnText(2), statement.ColumnInt(3),
                   statement.ColumnInt(4),  TimestampFromMilliseconds(statement.ColumnInt(5))};
}

// The accounts a user sees: as a member, or through a project shared with them.
constexpr const char* kVisibleAccountIds =
    "SELECT account_id FROM account_members WHERE user_id = ?1 "
    "UNION SELECT p.account_id FROM project_shares s JOIN projects p ON p.id = s.project_id "
    "WHERE s.user_id = ?1";

}  // namespace

AccountStore::AccountStore(std::shared_ptr<StoreCore> core) : core(std::move(core)) {}

Account AccountStore::Add(std::string_view name, std::string_view ownerId,
                          std::int64_t storageLimit) {
    ValidateName("the account name", name, kMaxNameLength);
    if (storageLimit < 0) {
        throw StoreError(StoreError::Kind::Invalid, "the storage limit must not be negative");
    }
    Account account{security::NewId(), std::string(name), std::string(ownerId), storageLimit, 0,
                    core->Now()};
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    if (!security::IsWellFormedId(ownerId) || !StoreCore::RowExists(*lease, "users", ownerId)) {
        throw StoreError(StoreError::Kind::NotFound, "no user " + std::string(ownerId));
    }
    lease
        ->Prepare(
            "INSERT INTO accounts (id, name, owner_id, storage_limit, storage_used, "
            "created_at) VALUES (?, ?, ?, ?, 0, ?)")
        .Bind(1, account.id)
        .Bind(2, account.name)
        .Bind(3, account.ownerId)
        .Bind(4, account.storageLimit)
        .Bind(5, MillisecondsOf(account.createdAt))
        .Run();
    lease->Prepare("INSERT INTO account_members (account_id, user_id, created_at) VALUES (?, ?, ?)")
        .Bind(1, account.id)
        .Bind(2, account.ownerId)
        .Bind(3, MillisecondsOf(account.createdAt))
        .Run();
    core->RecordChange(*lease, ChangeKind::AccountList, account.ownerId);
    transaction.Commit();
    return account;
}

void AccountStore::AddMember(std::string_view accountId, std::string_view userId) {
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    if (!security::IsWellFormedId(accountId) ||
        !StoreCore::RowExists(*lease, "accounts", accountId)) {
        throw StoreError(StoreError::Kind::NotFound, "no account " + std::string(accountId));
    }
    if (!security::IsWellFormedId(userId) || !StoreCore::RowExists(*lease, "users", userId)) {
        throw StoreError(StoreError::Kind::NotFound, "no user " + std::string(userId));
    }
    {
        Statement member =
            lease->Prepare("SELECT 1 FROM account_members WHERE account_id = ? AND user_id = ?");
        member.Bind(1, accountId).Bind(2, userId);
        if (member.Step()) {
            throw StoreError(StoreError::Kind::Conflict, "the user is already a member");
        }
    }
    lease->Prepare("INSERT INTO account_members (account_id, user_id, created_at) VALUES (?, ?, ?)")
        .Bind(1, accountId)
        .Bind(2, userId)
        .Bind(3, MillisecondsOf(core->Now()))
        .Run();
    core->RecordChange(*lease, ChangeKind::AccountList, userId);
    transaction.Commit();
}

std::optional<Account> AccountStore::Find(std::string_view id) const {
    if (!security::IsWellFormedId(id)) {
        return std::nullopt;
    }
    auto lease = core->Acquire();
    Statement statement = lease->Prepare(
        "SELECT id, name, owner_id, storage_limit, storage_used, created_at "
        "FROM accounts WHERE id = ?");
    statement.Bind(1, id);
    if (!statement.Step()) {
        return std::nullopt;
    }
    return ReadAccount(statement);
}

bool AccountStore::IsMember(std::string_view accountId, std::string_view userId) const {
    auto lease = core->Acquire();
    Statement statement =
        lease->Prepare("SELECT 1 FROM account_members WHERE account_id = ? AND user_id = ?");
    statement.Bind(1, accountId).Bind(2, userId);
    return statement.Step();
}

Page<VisibleAccount> AccountStore::ListForUser(std::string_view userId, PageRequest page) const {
    Page<VisibleAccount> result;
    auto lease = core->Acquire();
    Transaction transaction(*lease, Transaction::Mode::Read);
    {
        Statement count =
            lease->Prepare(std::string("SELECT COUNT(*) FROM (") + kVisibleAccountIds + ")");
        count.Bind(1, userId);
        count.Step();
        result.total = static_cast<std::uint64_t>(count.ColumnInt(0));
    }
    {
        Statement rows = lease->Prepare(
            std::string("SELECT a.id, a.name, a.owner_id, a.storage_limit, a.storage_used, "
                        "a.created_at, EXISTS (SELECT 1 FROM account_members m "
                        "WHERE m.account_id = a.id AND m.user_id = ?1) "
                        "FROM accounts a WHERE a.id IN (") +
            kVisibleAccountIds + ") ORDER BY a.name, a.id LIMIT ?2 OFFSET ?3");
        rows.Bind(1, userId).Bind(2, SqlLimit(page)).Bind(3, SqlOffset(page));
        while (rows.Step()) {
            result.items.push_back(VisibleAccount{ReadAccount(rows), rows.ColumnInt(6) != 0});
        }
    }
    transaction.Commit();
    return result;
}

}  // namespace vantroserver::store
