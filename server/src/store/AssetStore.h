// The asset trees of projects: folders, files and version stacks. Part of a Store; any
// thread. Every write records an `asset-list` change for the parent; files count toward their
// account's storage in use in the same transaction.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "store/Asset.h"
#include "store/Page.h"

namespace vantroserver::store {

class StoreCore;

class AssetStore {
public:
    /// Longest name, in bytes.
    static constexpr std::size_t kMaxNameLength = 255;

    explicit AssetStore(std::shared_ptr<StoreCore> core);

    std::optional<Asset> Find(std::string_view id) const;

    /// The children of `parentId`, by name then id; an empty page for an unknown parent.
    Page<Asset> Children(std::string_view parentId, PageRequest page) const;

    /// Throws StoreError: NotFound for an unknown parent; Invalid when the parent is not a
    /// folder or the name is empty, too long, contains '/' or a control character, or is not
    /// UTF-8.
    Asset CreateFolder(std::string_view parentId, std::string_view name);

    /// A version stack in a folder. Same refusals as CreateFolder.
    Asset CreateVersionStack(std::string_view parentId, std::string_view name);

    /// A file of `size` bytes in a folder, or the next version in a version stack (whose size
    /// becomes this one's; the file's `version` is one more than the stack's newest). Throws as
    /// CreateFolder, plus Invalid for a negative size and StorageLimit when the account would use
    /// more than its limit.
    Asset AddFile(std::string_view parentId, std::string_view name, std::int64_t size);

private:
    // An empty folder or version stack (named `what` in refusals) in the folder `parentId`.
    Asset CreateInFolder(std::string_view parentId, std::string_view name, AssetType type,
                         const std::string& what);

    std::shared_ptr<StoreCore> core;
};

}  // namespace vantroserver::store
