#include "api/JsonViews.h"

namespace vantroserver::api {

boost::json::object JsonViews::Of(const store::User& user) {
    return {{"id", user.id},
            {"username", user.username},
            {"name", user.name},
            {"email", user.email},
            {"created_at", store::FormatIso8601(user.createdAt)}};
}

boost::json::object JsonViews::Of(const store::Account& account, bool member) {
    return {{"id", account.id},
            {"name", account.name},
            {"owner_id", account.ownerId},
            {"storage_used", account.storageUsed},
            {"storage_limit", account.storageLimit},
            {"member", member},
            {"created_at", store::FormatIso8601(account.createdAt)}};
}

boost::json::object JsonViews::Of(const store::Team& team) {
    return {{"id", team.id},
            {"account_id", team.accountId},
            {"name", team.name},
            {"created_at", store::FormatIso8601(team.createdAt)}};
}

boost::json::object JsonViews::Of(const store::Project& project) {
    return {{"id", project.id},
            {"team_id", project.teamId},
            {"account_id", project.accountId},
            {"name", project.name},
            {"root_asset_id", project.rootAssetId},
            {"created_at", store::FormatIso8601(project.createdAt)}};
}

boost::json::object JsonViews::Of(const store::Asset& asset) {
    boost::json::object object{{"id", asset.id},
                               {"name", asset.name},
                               {"type", store::AssetTypeName(asset.type)},
                               {"project_id", asset.projectId},
                               {"account_id", asset.accountId},
                               {"filesize", asset.filesize},
                               {"created_at", store::FormatIso8601(asset.createdAt)}};
    // Only a file in a version stack has a version.
    if (asset.version > 0) {
        object["version"] = asset.version;
    }
    // A project's root folder has no parent: null rather than an empty id.
    if (asset.parentId.empty()) {
        object["parent_id"] = nullptr;
    } else {
        object["parent_id"] = asset.parentId;
    }
    return object;
}

}  // namespace vantroserver::api
