// A project of a workspace, or one shared with the user. Its root folder is given as an Asset
// made from root_asset_id, named like the project, of type "folder". A plain value, filled
// leniently. Any thread.
#pragma once

#include <string>

#include <vantrocommon/Guid.h>
#include <vantrosdk/Asset.h>

namespace vantrosdk {

struct Project {
    vantrocommon::Guid id;
    std::string name;
    vantrocommon::Guid workspaceId;
    vantrocommon::Guid accountId;
    /// The project's root folder; its id is empty when the answer has no root_asset_id.
    Asset rootAsset;
};

}  // namespace vantrosdk
