#include "store/Asset.h"

namespace vantroserver::store {

std::string_view AssetTypeName(AssetType type) {
    switch (type) {
        case AssetType::Folder:
            return "folder";
        case AssetType::File:
            return "file";
        case AssetType::VersionStack:
            return "version_stack";
    }
    return "folder";
}

std::optional<AssetType> ParseAssetType(std::string_view name) {
    if (name == "folder") {
        return AssetType::Folder;
    }
    if (name == "file") {
        return AssetType::File;
    }
    if (name == "version_stack") {
        return AssetType::VersionStack;
    }
    return std::nullopt;
}

}  // namespace vantroserver::store
