// A node of a project's tree: a folder, a file, or a version stack holding a file's versions.
// A value read from the store; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "store/Timestamp.h"

namespace vantroserver::store {

enum class AssetType { Folder, File, VersionStack };

/// "folder", "file", "version_stack".
std::string_view AssetTypeName(AssetType type);
std::optional<AssetType> ParseAssetType(std::string_view name);

struct Asset {
    std::string id;
    std::string projectId;
    std::string accountId;
    std::string parentId;  ///< Empty for a project's root folder.
    std::string name;
    AssetType type = AssetType::Folder;
    /// Bytes: a file's size; a version stack's newest version's size; 0 for a folder.
    std::int64_t filesize = 0;
    /// A file's place in its version stack, from 1; 0 for anything not in a stack.
    std::int64_t version = 0;
    Timestamp createdAt;
};

}  // namespace vantroserver::store
