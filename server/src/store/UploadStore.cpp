#include "store/UploadStore.h"

#include "security/Random.h"
#include "store/AssetRows.h"
#include "store/AssetStore.h"
#include "store/StoreCore.h"
#include "store/StoreError.h"
#include "store/Transaction.h"
#include "store/Validation.h"

namespace vantroserver::store {

namespace {

constexpr const char* kColumns =
    "id, user_id, folder_id, account_id, name, filesize, part_size, part_count, autoversion_id, "
    "created_at, expires_at";

Upload ReadUpload(const Statement& statement) {
    return Upload{statement.ColumnText(0),
                  statement.ColumnText(1),
                  statement.ColumnText(2),
                  statement.ColumnText(3),
                  statement.ColumnText(4),
                  statement.ColumnInt(5),
                  statement.ColumnInt(6),
                  statement.ColumnInt(7),
                  statement.ColumnText(8),
                  TimestampFromMilliseconds(statement.ColumnInt(9)),
                  TimestampFromMilliseconds(statement.ColumnInt(10))};
}

std::optional<Upload> FindOn(Connection& connection, std::string_view id, Timestamp now) {
    if (!security::IsWellFormedId(id)) {
        return std::nullopt;
    }
    Statement statement = connection.Prepare(std::string("SELECT ") + kColumns +
                                             " FROM uploads WHERE id = ? AND expires_at > ?");
    statement.Bind(1, id).Bind(2, MillisecondsOf(now));
    if (!statement.Step()) {
        return std::nullopt;
    }
    return ReadUpload(statement);
}

/// The stack an autoversion id names, if it exists; throws Conflict for any other asset.
std::optional<Asset> ExistingStack(Connection& connection, std::string_view autoversionId) {
    auto existing = AssetRows::Find(connection, autoversionId);
    if (existing && existing->type != AssetType::VersionStack) {
        throw StoreError(StoreError::Kind::Conflict,
                         "the autoversion id names an asset that is not a version stack");
    }
    return existing;
}

}  // namespace

UploadStore::UploadStore(std::shared_ptr<StoreCore> core) : core(std::move(core)) {}

Upload UploadStore::Create(const NewUpload& request, std::chrono::seconds ttl) {
    ValidateName("the file name", request.name, AssetStore::kMaxNameLength, false);
    if (request.filesize < 0) {
        throw StoreError(StoreError::Kind::Invalid, "filesize must not be negative");
    }
    if (request.partSize < kMinPartSize || request.partSize > kMaxPartSize) {
        throw StoreError(StoreError::Kind::Invalid, "part_size must be from " +
                                                        std::to_string(kMinPartSize) + " to " +
                                                        std::to_string(kMaxPartSize) + " bytes");
    }
    const std::int64_t partCount =
        request.filesize == 0 ? 1 : (request.filesize - 1) / request.partSize + 1;
    if (partCount > kMaxPartCount) {
        throw StoreError(StoreError::Kind::Invalid, "the file would need more than " +
                                                        std::to_string(kMaxPartCount) +
                                                        " parts; use a larger part_size");
    }
    if (!request.autoversionId.empty() && !security::IsWellFormedId(request.autoversionId)) {
        throw StoreError(StoreError::Kind::Invalid, "autoversion_id is not a well-formed id");
    }
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    const auto folder = AssetRows::Find(*lease, request.folderId);
    if (!folder) {
        throw StoreError(StoreError::Kind::NotFound, "no folder " + request.folderId);
    }
    if (folder->type != AssetType::Folder) {
        throw StoreError(StoreError::Kind::Invalid, "uploads go into folders");
    }
    std::string accountId = folder->accountId;
    if (!request.autoversionId.empty()) {
        if (const auto stack = ExistingStack(*lease, request.autoversionId)) {
            accountId = stack->accountId;
        }
    }
    const Timestamp now = core->Now();
    {
        Statement usage = lease->Prepare(
            "SELECT a.storage_used, a.storage_limit, (SELECT COALESCE(SUM(u.filesize), 0) "
            "FROM uploads u WHERE u.account_id = a.id AND u.expires_at > ?2) "
            "FROM accounts a WHERE a.id = ?1");
        usage.Bind(1, accountId).Bind(2, MillisecondsOf(now));
        if (!usage.Step()) {
            throw StoreError(StoreError::Kind::NotFound, "the folder's account is gone");
        }
        const std::int64_t used = usage.ColumnInt(0);
        const std::int64_t limit = usage.ColumnInt(1);
        const std::int64_t reserved = usage.ColumnInt(2);
        // Written as subtractions so that no sum can overflow.
        if (request.filesize > limit - used || request.filesize > limit - used - reserved) {
            throw StoreError(StoreError::Kind::StorageLimit,
                             "the account's storage limit of " + std::to_string(limit) +
                                 " bytes would be exceeded (" + std::to_string(used) + " in use, " +
                                 std::to_string(reserved) + " reserved by uploads in progress, " +
                                 std::to_string(request.filesize) + " more asked for)");
        }
    }
    Upload upload{security::NewId(),
                  request.userId,
                  folder->id,
                  accountId,
                  request.name,
                  request.filesize,
                  request.partSize,
                  partCount,
                  request.autoversionId,
                  now,
                  now + std::chrono::duration_cast<std::chrono::milliseconds>(ttl)};
    Statement insert = lease->Prepare(
        "INSERT INTO uploads (id, user_id, folder_id, account_id, name, filesize, part_size, "
        "part_count, autoversion_id, created_at, expires_at) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    insert.Bind(1, upload.id)
        .Bind(2, upload.userId)
        .Bind(3, upload.folderId)
        .Bind(4, upload.accountId)
        .Bind(5, upload.name)
        .Bind(6, upload.filesize)
        .Bind(7, upload.partSize)
        .Bind(8, upload.partCount);
    if (upload.autoversionId.empty()) {
        insert.BindNull(9);
    } else {
        insert.Bind(9, upload.autoversionId);
    }
    insert.Bind(10, MillisecondsOf(upload.createdAt)).Bind(11, MillisecondsOf(upload.expiresAt));
    insert.Run();
    transaction.Commit();
    return upload;
}

std::optional<Upload> UploadStore::Find(std::string_view id) const {
    auto lease = core->Acquire();
    return FindOn(*lease, id, core->Now());
}

std::vector<UploadPart> UploadStore::Parts(std::string_view uploadId) const {
    std::vector<UploadPart> parts;
    auto lease = core->Acquire();
    Statement rows = lease->Prepare(
        "SELECT part_number, size, sha256, received_at FROM upload_parts WHERE upload_id = ? "
        "ORDER BY part_number");
    rows.Bind(1, uploadId);
    while (rows.Step()) {
        parts.push_back(UploadPart{rows.ColumnInt(0), rows.ColumnInt(1), rows.ColumnText(2),
                                   TimestampFromMilliseconds(rows.ColumnInt(3))});
    }
    return parts;
}

void UploadStore::RecordPart(std::string_view uploadId, std::int64_t number, std::int64_t size,
                             std::string_view sha256) {
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    const auto upload = FindOn(*lease, uploadId, core->Now());
    if (!upload) {
        throw StoreError(StoreError::Kind::NotFound, "no upload " + std::string(uploadId));
    }
    if (number < 1 || number > upload->partCount || size != upload->SizeOfPart(number)) {
        throw StoreError(StoreError::Kind::Invalid, "the part does not fit the upload");
    }
    lease
        ->Prepare(
            "INSERT OR REPLACE INTO upload_parts (upload_id, part_number, size, sha256, "
            "received_at) VALUES (?, ?, ?, ?, ?)")
        .Bind(1, uploadId)
        .Bind(2, number)
        .Bind(3, size)
        .Bind(4, sha256)
        .Bind(5, MillisecondsOf(core->Now()))
        .Run();
    transaction.Commit();
}

void UploadStore::ForgetPart(std::string_view uploadId, std::int64_t number) {
    auto lease = core->Acquire();
    lease->Prepare("DELETE FROM upload_parts WHERE upload_id = ? AND part_number = ?")
        .Bind(1, uploadId)
        .Bind(2, number)
        .Run();
}

CompletedUpload UploadStore::Complete(std::string_view uploadId, std::string_view sha256,
                                      const std::function<void(const Asset& file)>& placeBytes) {
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    const auto upload = FindOn(*lease, uploadId, core->Now());
    if (!upload) {
        throw StoreError(StoreError::Kind::NotFound, "no upload " + std::string(uploadId));
    }
    {
        Statement count = lease->Prepare("SELECT COUNT(*) FROM upload_parts WHERE upload_id = ?");
        count.Bind(1, uploadId);
        count.Step();
        if (count.ColumnInt(0) != upload->partCount) {
            throw StoreError(StoreError::Kind::Invalid, "parts are missing");
        }
    }
    // Released first: the file's own size takes the reservation's place in the storage check.
    lease->Prepare("DELETE FROM uploads WHERE id = ?").Bind(1, uploadId).Run();

    CompletedUpload completed;
    std::string parentId = upload->folderId;
    if (!upload->autoversionId.empty()) {
        // Writers are serialized (IMMEDIATE), so of two completions into one new id the second
        // finds the stack the first made.
        if (!ExistingStack(*lease, upload->autoversionId)) {
            AssetRows::InsertInFolder(*core, *lease, upload->folderId, upload->name,
                                      AssetType::VersionStack, "version stack",
                                      upload->autoversionId);
            completed.stackCreated = true;
        }
        parentId = upload->autoversionId;
        completed.versionStackId = upload->autoversionId;
    }
    completed.file = AssetRows::InsertFile(*core, *lease, parentId, upload->name, upload->filesize);
    lease
        ->Prepare(
            "INSERT INTO completed_uploads (id, user_id, file_id, version_stack_id, sha256, "
            "expires_at) VALUES (?, ?, ?, ?, ?, ?)")
        .Bind(1, upload->id)
        .Bind(2, upload->userId)
        .Bind(3, completed.file.id)
        .Bind(4, completed.versionStackId)
        .Bind(5, sha256)
        .Bind(6, MillisecondsOf(upload->expiresAt))
        .Run();
    placeBytes(completed.file);
    transaction.Commit();
    return completed;
}

std::optional<CompletedUpload> UploadStore::FindCompleted(std::string_view uploadId,
                                                          std::string_view userId,
                                                          std::string_view sha256) const {
    if (!security::IsWellFormedId(uploadId)) {
        return std::nullopt;
    }
    auto lease = core->Acquire();
    Statement statement = lease->Prepare(
        "SELECT file_id, version_stack_id FROM completed_uploads "
        "WHERE id = ? AND user_id = ? AND sha256 = ? AND expires_at > ?");
    statement.Bind(1, uploadId)
        .Bind(2, userId)
        .Bind(3, sha256)
        .Bind(4, MillisecondsOf(core->Now()));
    if (!statement.Step()) {
        return std::nullopt;
    }
    const std::string fileId = statement.ColumnText(0);
    const std::string stackId = statement.ColumnText(1);
    statement.Run();
    auto file = AssetRows::Find(*lease, fileId);
    if (!file) {
        return std::nullopt;
    }
    return CompletedUpload{std::move(*file), stackId, false};
}

bool UploadStore::Remove(std::string_view uploadId) {
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    lease->Prepare("DELETE FROM uploads WHERE id = ?").Bind(1, uploadId).Run();
    const bool removed = lease->Changes() > 0;
    transaction.Commit();
    return removed;
}

std::vector<std::string> UploadStore::RemoveExpired() {
    std::vector<std::string> ids;
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    const std::int64_t now = MillisecondsOf(core->Now());
    {
        Statement rows = lease->Prepare("SELECT id FROM uploads WHERE expires_at <= ?");
        rows.Bind(1, now);
        while (rows.Step()) {
            ids.push_back(rows.ColumnText(0));
        }
    }
    lease->Prepare("DELETE FROM uploads WHERE expires_at <= ?").Bind(1, now).Run();
    lease->Prepare("DELETE FROM completed_uploads WHERE expires_at <= ?").Bind(1, now).Run();
    transaction.Commit();
    return ids;
}

}  // namespace vantroserver::store
