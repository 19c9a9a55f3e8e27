// The asset writes that other parts of the store repeat inside their own transactions: find an
// asset, make a folder or version stack in a folder, add a file (with its storage and version).
// Each works on a connection whose write transaction the caller holds; the caller's thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "store/Asset.h"
#include "store/Connection.h"

namespace vantroserver::store {

class StoreCore;

class AssetRows {
public:
    /// The columns Read expects, in order, for `SELECT <kColumns> FROM assets`.
    static constexpr const char* kColumns =
        "id, project_id, account_id, parent_id, name, type, filesize, version, created_at";
    static Asset Read(const Statement& statement);

    static std::optional<Asset> Find(Connection& connection, std::string_view id);

    /// An empty folder or version stack (named `what` in refusals) in the folder `parentId`,
    /// with `id` or a fresh one when empty. Throws as AssetStore::CreateFolder.
    static Asset InsertInFolder(const StoreCore& core, Connection& connection,
                                std::string_view parentId, std::string_view name, AssetType type,
                                const std::string& what, std::string_view id = {});

    /// A file in a folder or the next version in a stack. Throws as AssetStore::AddFile.
    static Asset InsertFile(const StoreCore& core, Connection& connection,
                            std::string_view parentId, std::string_view name, std::int64_t size);
};

}  // namespace vantroserver::store
