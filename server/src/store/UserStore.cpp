#include "store/UserStore.h"

#include "security/PasswordHasher.h"
#include "security/Random.h"
#include "store/StoreCore.h"
#include "store/StoreError.h"
#include "store/Transaction.h"
#include "store/Validation.h"

namespace vantroserver::store {

namespace {

constexpr std::size_t kMaxUsernameLength = 64;
constexpr std::size_t kMaxPasswordLength = 1024;
constexpr std::size_t kMaxNameLength = 200;
constexpr std::size_t kMaxEmailLength = 254;

constexpr const char* kColumns = "id, username, name, email, created_at";

User ReadUser(const Statement& statement) {
    return User{statement.ColumnText(0), statement.ColumnText(1), statement.ColumnText(2),
                statement.ColumnText(3), TimestampFromMilliseconds(statement.ColumnInt(4))};
}

void ValidateUsername(std::string_view username) {
    if (username.empty() || username.size() > kMaxUsernameLength) {
        throw StoreError(StoreError::Kind::Invalid, "a username has 1 to 64 characters");
    }
    for (const char c : username) {
        const bool allowed = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                             (c >= '0' && c <= '9') || c == '.' || c == '_' || c == '@' || c == '-';
        if (!allowed) {
            throw StoreError(StoreError::Kind::Invalid,
                             "a username may hold only letters, digits and . _ @ -");
        }
    }
}

}  // namespace

UserStore::UserStore(std::shared_ptr<StoreCore> core) : core(std::move(core)) {}

User UserStore::Add(const NewUser& user) {
    ValidateUsername(user.username);
    if (user.password.empty() || user.password.size() > kMaxPasswordLength) {
        throw StoreError(StoreError::Kind::Invalid, "a password has 1 to 1024 bytes");
    }
    const std::string name = user.name.empty() ? user.username : user.name;
    ValidateName("the name", name, kMaxNameLength);
    if (!user.email.empty()) {
        ValidateName("the email address", user.email, kMaxEmailLength);
        if (user.email.find('@') == std::string::npos) {
            throw StoreError(StoreError::Kind::Invalid, "the email address has no '@'");
        }
    }
    // Hashing is slow on purpose; do it before taking the write lock.
    const std::string hash =
        security::PasswordHasher(core->Options().passwordIterations).Hash(user.password);
    User added{security::NewId(), user.username, name, user.email, core->Now()};

    auto lease = core->Acquire();
    Transaction transaction(*lease);
    {
        Statement taken = lease->Prepare("SELECT 1 FROM users WHERE username = ?");
        taken.Bind(1, user.username);
        if (taken.Step()) {
            throw StoreError(StoreError::Kind::Conflict,
                             "the username " + user.username + " is taken");
        }
    }
    lease
        ->Prepare(
            "INSERT INTO users (id, username, name, email, password_hash, created_at) "
            "VALUES (?, ?, ?, ?, ?, ?)")
        .Bind(1, added.id)
        .Bind(2, added.username)
        .Bind(3, added.name)
        .Bind(4, added.email)
        .Bind(5, hash)
        .Bind(6, MillisecondsOf(added.createdAt))
        .Run();
    transaction.Commit();
    return added;
}

std::optional<User> UserStore::Find(std::string_view id) const {
    if (!security::IsWellFormedId(id)) {
        return std::nullopt;
    }
    auto lease = core->Acquire();
    Statement statement =
        lease->Prepare(std::string("SELECT ") + kColumns + " FROM users WHERE id = ?");
    statement.Bind(1, id);
    if (!statement.Step()) {
        return std::nullopt;
    }
    return ReadUser(statement);
}

std::optional<User> UserStore::FindByUsername(std::string_view username) const {
    auto lease = core->Acquire();
    Statement statement =
        lease->Prepare(std::string("SELECT ") + kColumns + " FROM users WHERE username = ?");
    statement.Bind(1, username);
    if (!statement.Step()) {
        return std::nullopt;
    }
    return ReadUser(statement);
}

std::optional<User> UserStore::Authenticate(std::string_view username,
                                            std::string_view password) const {
    std::optional<User> user;
    std::string hash;
    {
        auto lease = core->Acquire();
        Statement statement = lease->Prepare(std::string("SELECT ") + kColumns +
                                             ", password_hash FROM users WHERE username = ?");
        statement.Bind(1, username);
        if (statement.Step()) {
            user = ReadUser(statement);
            hash = statement.ColumnText(5);
        }
    }
    if (!user) {
        // Same cost as a real check, so response times do not reveal which usernames exist.
        std::call_once(decoyOnce, [this] {
            decoyHash = security::PasswordHasher(core->Options().passwordIterations).Hash("-");
        });
        security::PasswordHasher::Verify(password, decoyHash);
        return std::nullopt;
    }
    if (!security::PasswordHasher::Verify(password, hash)) {
        return std::nullopt;
    }
    return user;
}

}  // namespace vantroserver::store
