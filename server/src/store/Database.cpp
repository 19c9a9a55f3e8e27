#include "store/Database.h"

#include <string>

#include "store/StoreError.h"
#include "store/Transaction.h"

namespace vantroserver::store {

namespace {

// Times are milliseconds since the epoch (UTC). Ids are the text form of random 128-bit
// values. Listings are served from the (parent, name, id) indexes in that order.
constexpr const char* kSchema = R"sql(
CREATE TABLE users (
    id TEXT PRIMARY KEY,
    username TEXT NOT NULL UNIQUE,
    name TEXT NOT NULL,
    email TEXT NOT NULL,
    password_hash TEXT NOT NULL,
    created_at INTEGER NOT NULL
);
CREATE TABLE clients (
    id TEXT PRIMARY KEY,
    created_at INTEGER NOT NULL
);
CREATE TABLE accounts (
    id TEXT PRIMARY KEY,
    name TEXT NOT NULL,
    owner_id TEXT NOT NULL REFERENCES users(id),
    storage_limit INTEGER NOT NULL CHECK (storage_limit >= 0),
    storage_used INTEGER NOT NULL DEFAULT 0 CHECK (storage_used >= 0),
    created_at INTEGER NOT NULL
);
CREATE TABLE account_members (
    account_id TEXT NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
    user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
    created_at INTEGER NOT NULL,
    PRIMARY KEY (account_id, user_id)
) WITHOUT ROWID;
CREATE INDEX account_members_by_user ON account_members (user_id, account_id);
CREATE TABLE teams (
    id TEXT PRIMARY KEY,
    account_id TEXT NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
    name TEXT NOT NULL,
    created_at INTEGER NOT NULL
);
CREATE INDEX teams_by_account ON teams (account_id, name, id);
CREATE TABLE team_members (
    team_id TEXT NOT NULL REFERENCES teams(id) ON DELETE CASCADE,
    user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
    created_at INTEGER NOT NULL,
    PRIMARY KEY (team_id, user_id)
) WITHOUT ROWID;
CREATE INDEX team_members_by_user ON team_members (user_id, team_id);
CREATE TABLE projects (
    id TEXT PRIMARY KEY,
    team_id TEXT NOT NULL REFERENCES teams(id) ON DELETE CASCADE,
    account_id TEXT NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
    name TEXT NOT NULL,
    -- The root folder is inserted after its project, in the same transaction.
    root_asset_id TEXT NOT NULL REFERENCES assets(id) DEFERRABLE INITIALLY DEFERRED,
    created_at INTEGER NOT NULL
);
CREATE INDEX projects_by_team ON projects (team_id, name, id);
CREATE INDEX projects_by_account ON projects (account_id, name, id);
CREATE TABLE project_shares (
    project_id TEXT NOT NULL REFERENCES projects(id) ON DELETE CASCADE,
    user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
    created_at INTEGER NOT NULL,
    PRIMARY KEY (project_id, user_id)
) WITHOUT ROWID;
CREATE INDEX project_shares_by_user ON project_shares (user_id, project_id);
CREATE TABLE assets (
    id TEXT PRIMARY KEY,
    project_id TEXT NOT NULL REFERENCES projects(id) ON DELETE CASCADE,
    account_id TEXT NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
    parent_id TEXT REFERENCES assets(id) ON DELETE CASCADE,
    name TEXT NOT NULL,
    type TEXT NOT NULL CHECK (type IN ('folder', 'file', 'version_stack')),
    filesize INTEGER NOT NULL DEFAULT 0 CHECK (filesize >= 0),
    -- A file's place in its version stack (1 is the first); 0 for anything not in a stack.
    version INTEGER NOT NULL DEFAULT 0 CHECK (version >= 0),
    created_at INTEGER NOT NULL
);
CREATE INDEX assets_by_parent ON assets (parent_id, name, id);
CREATE INDEX assets_by_project ON assets (project_id);
CREATE TABLE token_families (
    id TEXT PRIMARY KEY,
    user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
    client_id TEXT NOT NULL,
    revoked INTEGER NOT NULL DEFAULT 0,
    created_at INTEGER NOT NULL
);
CREATE TABLE authorization_codes (
    code_hash TEXT PRIMARY KEY,
    family_id TEXT NOT NULL UNIQUE,
    client_id TEXT NOT NULL,
    user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
    redirect_uri TEXT NOT NULL,
    code_challenge TEXT NOT NULL,
    expires_at INTEGER NOT NULL,
    used INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE refresh_tokens (
    token_hash TEXT PRIMARY KEY,
    family_id TEXT NOT NULL REFERENCES token_families(id) ON DELETE CASCADE,
    expires_at INTEGER NOT NULL,
    rotated INTEGER NOT NULL DEFAULT 0,
    created_at INTEGER NOT NULL
);
CREATE INDEX refresh_tokens_by_family ON refresh_tokens (family_id);
CREATE TABLE changes (
    sequence INTEGER PRIMARY KEY AUTOINCREMENT,
    kind TEXT NOT NULL,
    parent_id TEXT NOT NULL,
    created_at INTEGER NOT NULL
);
-- An upload in progress: the file it will become and how it is cut into parts. Its bytes live
-- in the data directory's uploads/ until it completes, is aborted or expires.
CREATE TABLE uploads (
    id TEXT PRIMARY KEY,
    user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
    folder_id TEXT NOT NULL REFERENCES assets(id) ON DELETE CASCADE,
    account_id TEXT NOT NULL REFERENCES accounts(id) ON DELETE CASCADE,
    name TEXT NOT NULL,
    filesize INTEGER NOT NULL CHECK (filesize >= 0),
    part_size INTEGER NOT NULL CHECK (part_size > 0),
    part_count INTEGER NOT NULL CHECK (part_count >= 1),
    autoversion_id TEXT,
    created_at INTEGER NOT NULL,
    expires_at INTEGER NOT NULL
);
CREATE INDEX uploads_by_account ON uploads (account_id);
CREATE INDEX uploads_by_expiry ON uploads (expires_at);
CREATE TABLE upload_parts (
    upload_id TEXT NOT NULL REFERENCES uploads(id) ON DELETE CASCADE,
    part_number INTEGER NOT NULL CHECK (part_number >= 1),
    size INTEGER NOT NULL CHECK (size >= 0),
    sha256 TEXT NOT NULL,
    received_at INTEGER NOT NULL,
    PRIMARY KEY (upload_id, part_number)
) WITHOUT ROWID;
CREATE TABLE review_links (
    id TEXT PRIMARY KEY,
    project_id TEXT NOT NULL REFERENCES projects(id) ON DELETE CASCADE,
    creator_id TEXT NOT NULL REFERENCES users(id),
    name TEXT NOT NULL,
    token TEXT NOT NULL UNIQUE,
    created_at INTEGER NOT NULL
);
CREATE INDEX review_links_by_project ON review_links (project_id, name, id);
CREATE TABLE review_link_items (
    link_id TEXT NOT NULL REFERENCES review_links(id) ON DELETE CASCADE,
    asset_id TEXT NOT NULL REFERENCES assets(id) ON DELETE CASCADE,
    position INTEGER NOT NULL,
    created_at INTEGER NOT NULL,
    PRIMARY KEY (link_id, asset_id)
) WITHOUT ROWID;
CREATE INDEX review_link_items_by_asset ON review_link_items (asset_id);
)sql";

// Added in version 3; a version 2 database gains it on open.
constexpr const char* kCompletedUploadsSchema = R"sql(
-- A completed upload, kept until the upload would have expired: a client whose completion
-- answer was lost asks again and gets the same file instead of a 404.
CREATE TABLE completed_uploads (
    id TEXT PRIMARY KEY,
    user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
    file_id TEXT NOT NULL REFERENCES assets(id) ON DELETE CASCADE,
    version_stack_id TEXT,
    sha256 TEXT NOT NULL,
    expires_at INTEGER NOT NULL
);
CREATE INDEX completed_uploads_by_expiry ON completed_uploads (expires_at);
)sql";

constexpr int kVersionBeforeCompletedUploads = 2;

}  // namespace

Database::Lease::Lease(std::shared_ptr<Database> database, std::unique_ptr<Connection> connection)
    : database(std::move(database)), connection(std::move(connection)) {}

Database::Lease::~Lease() {
    if (database && connection) {
        database->Release(std::move(connection));
    }
}

Database::Database(PrivateTag, std::filesystem::path file, DatabaseOptions options)
    : file(std::move(file)), options(options) {}

std::shared_ptr<Database> Database::Open(const std::filesystem::path& file, bool create,
                                         DatabaseOptions options) {
    if (!create && !std::filesystem::exists(file)) {
        throw StoreError(StoreError::Kind::Database,
                         "no database at " + file.string() + " (run `vantro-server init` first)");
    }
    auto database = std::make_shared<Database>(PrivateTag{}, file, options);
    auto connection = std::make_unique<Connection>(file, create, options.busyTimeout);
    database->ApplySchema(*connection, create);
    database->Release(std::move(connection));
    return database;
}

Database::Lease Database::Acquire() {
    {
        std::lock_guard lock(mutex);
        if (!idle.empty()) {
            auto connection = std::move(idle.back());
            idle.pop_back();
            return Lease(shared_from_this(), std::move(connection));
        }
    }
    // Opened outside the lock: opening touches the file and may wait on another process.
    return Lease(shared_from_this(),
                 std::make_unique<Connection>(file, false, options.busyTimeout));
}

void Database::Release(std::unique_ptr<Connection> connection) {
    std::lock_guard lock(mutex);
    if (idle.size() < options.maxIdleConnections) {
        idle.push_back(std::move(connection));
    }
}

void Database::ApplySchema(Connection& connection, bool create) {
    Transaction transaction(connection);
    Statement versionQuery = connection.Prepare("PRAGMA user_version");
    versionQuery.Step();
    const auto version = versionQuery.ColumnInt(0);
    versionQuery.Run();
    if (version == kSchemaVersion) {
        return;
    }
    if (version == kVersionBeforeCompletedUploads) {
        connection.Execute(kCompletedUploadsSchema);
        connection.Execute("PRAGMA user_version = " + std::to_string(kSchemaVersion));
        transaction.Commit();
        return;
    }
    if (version != 0) {
        throw StoreError(StoreError::Kind::Database,
                         "the database " + file.string() + " has schema version " +
                             std::to_string(version) + "; this server reads version " +
                             std::to_string(kSchemaVersion));
    }
    if (!create) {
        throw StoreError(StoreError::Kind::Database,
                         file.string() + " is not a vantro-server database");
    }
    connection.Execute(kSchema);
    connection.Execute(kCompletedUploadsSchema);
    connection.Execute("PRAGMA user_version = " + std::to_string(kSchemaVersion));
    transaction.Commit();
}

}  // namespace vantroserver::store
