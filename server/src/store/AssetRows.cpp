#include "store/AssetRows.h"

#include "security/Random.h"
#include "store/AssetStore.h"
#include "store/StoreCore.h"
#include "store/StoreError.h"
#include "store/Validation.h"

namespace vantroserver::store {

namespace {

Asset RequireParent(Connection& connection, std::string_view parentId) {
    auto parent = AssetRows::Find(connection, parentId);
    if (!parent) {
        throw StoreError(StoreError::Kind::NotFound, "no asset " + std::string(parentId));
    }
    return *parent;
}

void Insert(Connection& connection, const Asset& asset) {
    connection
        .Prepare(
            "INSERT INTO assets (id, project_id, account_id, parent_id, name, type, "
            "filesize, version, created_at) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)")
        .Bind(1, asset.id)
        .Bind(2, asset.projectId)
        .Bind(3, asset.accountId)
        .Bind(4, asset.parentId)
        .Bind(5, asset.name)
        .Bind(6, AssetTypeName(asset.type))
        .Bind(7, asset.filesize)
        .Bind(8, asset.version)
        .Bind(9, MillisecondsOf(asset.createdAt))
        .Run();
}

}  // namespace

Asset AssetRows::Read(const Statement& statement) {
    return Asset{statement.ColumnText(0),
                 statement.ColumnText(1),
                 statement.ColumnText(2),
                 statement.ColumnText(3),
                 statement.ColumnText(4),
                 ParseAssetType(statement.ColumnText(5)).value_or(AssetType::Folder),
                 statement.ColumnInt(6),
                 statement.ColumnInt(7),
                 TimestampFromMilliseconds(statement.ColumnInt(8))};
}

std::optional<Asset> AssetRows::Find(Connection& connection, std::string_view id) {
    if (!security::IsWellFormedId(id)) {
        return std::nullopt;
    }
    Statement statement =
        connection.Prepare(std::string("SELECT ") + kColumns + " FROM assets WHERE id = ?");
    statement.Bind(1, id);
    if (!statement.Step()) {
        return std::nullopt;
    }
    return Read(statement);
}

Asset AssetRows::InsertInFolder(const StoreCore& core, Connection& connection,
                                std::string_view parentId, std::string_view name, AssetType type,
                                const std::string& what, std::string_view id) {
    ValidateName("the " + what + " name", name, AssetStore::kMaxNameLength, false);
    const Asset parent = RequireParent(connection, parentId);
    if (parent.type != AssetType::Folder) {
        throw StoreError(StoreError::Kind::Invalid, what + "s can only be made inside folders");
    }
    Asset asset{id.empty() ? security::NewId() : std::string(id),
                parent.projectId,
                parent.accountId,
                parent.id,
                std::string(name),
                type,
                0,
                0,
                core.Now()};
    Insert(connection, asset);
    core.RecordChange(connection, ChangeKind::AssetList, parent.id);
    return asset;
}

Asset AssetRows::InsertFile(const StoreCore& core, Connection& connection,
                            std::string_view parentId, std::string_view name, std::int64_t size) {
    ValidateName("the file name", name, AssetStore::kMaxNameLength, false);
    if (size < 0) {
        throw StoreError(StoreError::Kind::Invalid, "a file size must not be negative");
    }
    const Asset parent = RequireParent(connection, parentId);
    if (parent.type == AssetType::File) {
        throw StoreError(StoreError::Kind::Invalid,
                         "files go into folders or version stacks, not into files");
    }
    {
        Statement account =
            connection.Prepare("SELECT storage_used, storage_limit FROM accounts WHERE id = ?");
        account.Bind(1, parent.accountId);
        if (!account.Step()) {
            throw StoreError(StoreError::Kind::NotFound, "the asset's account is gone");
        }
        const std::int64_t used = account.ColumnInt(0);
        const std::int64_t limit = account.ColumnInt(1);
        // Written as a subtraction so that no sum can overflow.
        if (size > limit - used) {
            throw StoreError(StoreError::Kind::StorageLimit,
                             "the account's storage limit of " + std::to_string(limit) +
                                 " bytes would be exceeded (" + std::to_string(used) + " in use, " +
                                 std::to_string(size) + " more asked for)");
        }
    }
    connection.Prepare("UPDATE accounts SET storage_used = storage_used + ? WHERE id = ?")
        .Bind(1, size)
        .Bind(2, parent.accountId)
        .Run();
    std::int64_t version = 0;
    if (parent.type == AssetType::VersionStack) {
        Statement newest =
            connection.Prepare("SELECT COALESCE(MAX(version), 0) FROM assets WHERE parent_id = ?");
        newest.Bind(1, parent.id);
        newest.Step();
        version = newest.ColumnInt(0) + 1;
    }
    Asset file{security::NewId(),
               parent.projectId,
               parent.accountId,
               parent.id,
               std::string(name),
               AssetType::File,
               size,
               version,
               core.Now()};
    Insert(connection, file);
    core.RecordChange(connection, ChangeKind::AssetList, parent.id);
    if (parent.type == AssetType::VersionStack) {
        // The stack shows its newest version, so its own row in its folder changes too.
        connection.Prepare("UPDATE assets SET filesize = ? WHERE id = ?")
            .Bind(1, size)
            .Bind(2, parent.id)
            .Run();
        core.RecordChange(connection, ChangeKind::AssetList, parent.parentId);
    }
    return file;
}

}  // namespace vantroserver::store
