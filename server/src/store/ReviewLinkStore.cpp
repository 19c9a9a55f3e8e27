#include "store/ReviewLinkStore.h"

#include <algorithm>

#include "security/Random.h"
#include "store/StoreCore.h"
#include "store/StoreError.h"
#include "store/Transaction.h"
#include "store/Validation.h"

namespace vantroserver::store {

namespace {

constexpr const char* kLinkColumns =
    "l.id, l.project_id, l.creator_id, l.name, l.token, l.created_at, "
    "(SELECT COUNT(*) FROM review_link_items i WHERE i.link_id = l.id)";

constexpr const char* kAssetColumns =
    "id, project_id, account_id, parent_id, name, type, filesize, version, created_at";

ReviewLink ReadLink(const Statement& row) {
    return ReviewLink{row.ColumnText(0),
                      row.ColumnText(1),
                      row.ColumnText(2),
                      row.ColumnText(3),
                      row.ColumnText(4),
                      row.ColumnInt(6),
                      TimestampFromMilliseconds(row.ColumnInt(5))};
}

Asset ReadAsset(const Statement& row, int first = 0) {
    return Asset{row.ColumnText(first),
                 row.ColumnText(first + 1),
                 row.ColumnText(first + 2),
                 row.ColumnText(first + 3),
                 row.ColumnText(first + 4),
                 ParseAssetType(row.ColumnText(first + 5)).value_or(AssetType::Folder),
                 row.ColumnInt(first + 6),
                 row.ColumnInt(first + 7),
                 TimestampFromMilliseconds(row.ColumnInt(first + 8))};
}

std::optional<Asset> FindAsset(Connection& connection, std::string_view id) {
    if (!security::IsWellFormedId(id)) {
        return std::nullopt;
    }
    Statement row =
        connection.Prepare(std::string("SELECT ") + kAssetColumns + " FROM assets WHERE id = ?");
    row.Bind(1, id);
    if (!row.Step()) {
        return std::nullopt;
    }
    return ReadAsset(row);
}

std::optional<ReviewLink> FindLinkWhere(Connection& connection, const char* column,
                                        std::string_view value) {
    Statement row = connection.Prepare(std::string("SELECT ") + kLinkColumns +
                                       " FROM review_links l WHERE l." + column + " = ?");
    row.Bind(1, value);
    if (!row.Step()) {
        return std::nullopt;
    }
    return ReadLink(row);
}

std::vector<Asset> VersionsOn(Connection& connection, std::string_view stackId) {
    std::vector<Asset> versions;
    Statement rows = connection.Prepare(std::string("SELECT ") + kAssetColumns +
                                        " FROM assets WHERE parent_id = ? AND type = 'file' "
                                        "ORDER BY version DESC, created_at DESC, id");
    rows.Bind(1, stackId);
    while (rows.Step()) {
        versions.push_back(ReadAsset(rows));
    }
    return versions;
}

}  // namespace

ReviewLinkStore::ReviewLinkStore(std::shared_ptr<StoreCore> core) : core(std::move(core)) {}

ReviewLink ReviewLinkStore::Create(std::string_view projectId, std::string_view creatorId,
                                   std::string_view name) {
    ValidateName("the review link name", name, kMaxNameLength);
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    if (!security::IsWellFormedId(projectId) ||
        !StoreCore::RowExists(*lease, "projects", projectId)) {
        throw StoreError(StoreError::Kind::NotFound, "no project " + std::string(projectId));
    }
    if (!security::IsWellFormedId(creatorId) || !StoreCore::RowExists(*lease, "users", creatorId)) {
        throw StoreError(StoreError::Kind::NotFound, "no user " + std::string(creatorId));
    }
    ReviewLink link{security::NewId(),
                    std::string(projectId),
                    std::string(creatorId),
                    std::string(name),
                    security::NewOpaqueToken(kTokenBytes),
                    0,
                    core->Now()};
    lease
        ->Prepare(
            "INSERT INTO review_links (id, project_id, creator_id, name, token, created_at) "
            "VALUES (?, ?, ?, ?, ?, ?)")
        .Bind(1, link.id)
        .Bind(2, link.projectId)
        .Bind(3, link.creatorId)
        .Bind(4, link.name)
        .Bind(5, link.token)
        .Bind(6, MillisecondsOf(link.createdAt))
        .Run();
    transaction.Commit();
    return link;
}

std::optional<ReviewLink> ReviewLinkStore::Find(std::string_view id) const {
    if (!security::IsWellFormedId(id)) {
        return std::nullopt;
    }
    auto lease = core->Acquire();
    return FindLinkWhere(*lease, "id", id);
}

std::optional<ReviewLink> ReviewLinkStore::FindByToken(std::string_view token) const {
    // Tokens are base64url of kTokenBytes bytes; anything else is not one of ours.
    constexpr std::size_t kTokenLength = (kTokenBytes * 4 + 2) / 3;
    const bool wellFormed =
        token.size() == kTokenLength && std::all_of(token.begin(), token.end(), [](char c) {
            return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                   c == '-' || c == '_';
        });
    if (!wellFormed) {
        return std::nullopt;
    }
    auto lease = core->Acquire();
    return FindLinkWhere(*lease, "token", token);
}

Page<ReviewLink> ReviewLinkStore::ListForProject(std::string_view projectId,
                                                 PageRequest page) const {
    Page<ReviewLink> result;
    if (!security::IsWellFormedId(projectId)) {
        return result;
    }
    auto lease = core->Acquire();
    Transaction transaction(*lease, Transaction::Mode::Read);
    {
        Statement count = lease->Prepare("SELECT COUNT(*) FROM review_links WHERE project_id = ?");
        count.Bind(1, projectId);
        count.Step();
        result.total = static_cast<std::uint64_t>(count.ColumnInt(0));
    }
    {
        Statement rows = lease->Prepare(std::string("SELECT ") + kLinkColumns +
                                        " FROM review_links l WHERE l.project_id = ?1 "
                                        "ORDER BY l.name, l.id LIMIT ?2 OFFSET ?3");
        rows.Bind(1, projectId).Bind(2, SqlLimit(page)).Bind(3, SqlOffset(page));
        while (rows.Step()) {
            result.items.push_back(ReadLink(rows));
        }
    }
    transaction.Commit();
    return result;
}

void ReviewLinkStore::AddItems(std::string_view linkId, const std::vector<std::string>& assetIds) {
    if (assetIds.size() > kMaxAssetsPerAdd) {
        throw StoreError(StoreError::Kind::Invalid, "at most " + std::to_string(kMaxAssetsPerAdd) +
                                                        " assets can be added at once");
    }
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    const auto link =
        security::IsWellFormedId(linkId) ? FindLinkWhere(*lease, "id", linkId) : std::nullopt;
    if (!link) {
        throw StoreError(StoreError::Kind::NotFound, "no review link " + std::string(linkId));
    }
    std::int64_t position = 0;
    {
        Statement last = lease->Prepare(
            "SELECT COALESCE(MAX(position), 0) FROM review_link_items WHERE link_id = ?");
        last.Bind(1, link->id);
        last.Step();
        position = last.ColumnInt(0);
    }
    const auto now = MillisecondsOf(core->Now());
    for (const auto& assetId : assetIds) {
        const auto asset = FindAsset(*lease, assetId);
        if (!asset || asset->projectId != link->projectId) {
            throw StoreError(StoreError::Kind::NotFound,
                             "no asset " + assetId + " in the link's project");
        }
        if (asset->type == AssetType::Folder) {
            throw StoreError(
                StoreError::Kind::Invalid,
                "only files and version stacks can be reviewed; " + assetId + " is a folder");
        }
        lease
            ->Prepare(
                "INSERT OR IGNORE INTO review_link_items (link_id, asset_id, position, "
                "created_at) VALUES (?, ?, ?, ?)")
            .Bind(1, link->id)
            .Bind(2, asset->id)
            .Bind(3, position + 1)
            .Bind(4, now)
            .Run();
        if (lease->Changes() > 0) {
            ++position;
        }
    }
    transaction.Commit();
}

std::vector<ReviewLinkItem> ReviewLinkStore::Items(std::string_view linkId) const {
    std::vector<ReviewLinkItem> items;
    if (!security::IsWellFormedId(linkId)) {
        return items;
    }
    auto lease = core->Acquire();
    // One read transaction, so every item is resolved against the same state.
    Transaction transaction(*lease, Transaction::Mode::Read);
    {
        Statement rows = lease->Prepare(
            "SELECT i.position, a.id, a.project_id, a.account_id, a.parent_id, a.name, a.type, "
            "a.filesize, a.version, a.created_at FROM review_link_items i "
            "JOIN assets a ON a.id = i.asset_id WHERE i.link_id = ? ORDER BY i.position");
        rows.Bind(1, linkId);
        while (rows.Step()) {
            ReviewLinkItem item;
            item.position = rows.ColumnInt(0);
            item.added = ReadAsset(rows, 1);
            items.push_back(std::move(item));
        }
    }
    for (auto& item : items) {
        if (item.added.type == AssetType::VersionStack) {
            item.versionStack = item.added;
        } else if (!item.added.parentId.empty()) {
            auto parent = FindAsset(*lease, item.added.parentId);
            if (parent && parent->type == AssetType::VersionStack) {
                item.versionStack = std::move(parent);
            }
        }
        if (item.versionStack) {
            const auto versions = VersionsOn(*lease, item.versionStack->id);
            item.versionCount = static_cast<std::int64_t>(versions.size());
            if (!versions.empty()) {
                item.current = versions.front();
            }
        } else {
            item.current = item.added;
        }
    }
    transaction.Commit();
    return items;
}

std::vector<Asset> ReviewLinkStore::Versions(std::string_view stackId) const {
    if (!security::IsWellFormedId(stackId)) {
        return {};
    }
    auto lease = core->Acquire();
    return VersionsOn(*lease, stackId);
}

bool ReviewLinkStore::HoldsFile(std::string_view linkId, std::string_view fileId) const {
    if (!security::IsWellFormedId(linkId) || !security::IsWellFormedId(fileId)) {
        return false;
    }
    auto lease = core->Acquire();
    // The file itself, its stack, or another version of its stack is an item of the link.
    Statement row = lease->Prepare(
        "SELECT 1 FROM assets f WHERE f.id = ?2 AND f.type = 'file' AND EXISTS ("
        " SELECT 1 FROM review_link_items i JOIN assets a ON a.id = i.asset_id"
        " WHERE i.link_id = ?1 AND (a.id = f.id OR (EXISTS (SELECT 1 FROM assets s"
        "  WHERE s.id = f.parent_id AND s.type = 'version_stack')"
        "  AND (a.id = f.parent_id OR a.parent_id = f.parent_id))))");
    row.Bind(1, linkId).Bind(2, fileId);
    return row.Step();
}

}  // namespace vantroserver::store
