#include "detail/RecordReader.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vantro::detail {
namespace {

std::optional<std::string> Text(const boost::json::object& object, std::string_view key) {
    const auto* value = object.if_contains(key);
    if (value == nullptr || !value->is_string()) {
        return std::nullopt;
    }
    return std::string(value->as_string());
}

kelcore::utility::Guid Id(const boost::json::object& object, std::string_view key) {
    const auto text = Text(object, key);
    return text ? kelcore::utility::Guid(std::string_view(*text)) : kelcore::utility::Guid();
}

std::uint64_t Count(const boost::json::object& object, std::string_view key) {
    const auto* value = object.if_contains(key);
    if (value == nullptr) {
        return 0;
    }
    if (value->is_uint64()) {
        return value->as_uint64();
    }
    if (value->is_int64() && value->as_int64() > 0) {
        return static_cast<std::uint64_t>(value->as_int64());
    }
    return 0;
}

}  // namespace

v2::Account RecordReader::Account(const boost::json::object& object) {
    v2::Account account;
    account.id = Id(object, "id");
    account.name = Text(object, "name");
    account.ownerID = Id(object, "owner_id");
    account.storageUsed = Count(object, "storage_used");
    account.storageLimit = Count(object, "storage_limit");
    if (const auto* member = object.if_contains("member"); member && member->is_bool()) {
        account.member = member->as_bool();
    }
    return account;
}

v2::Team RecordReader::Team(const boost::json::object& object) {
    v2::Team team;
    team.id = Id(object, "id");
    team.accountID = Id(object, "account_id");
    team.name = Text(object, "name");
    return team;
}

v2::Project RecordReader::Project(const boost::json::object& object) {
    v2::Project project;
    project.id = Id(object, "id");
    project.teamID = Id(object, "team_id");
    project.accountID = Id(object, "account_id");
    project.name = Text(object, "name");
    project.rootAssetID = Id(object, "root_asset_id");
    return project;
}

v2::Asset RecordReader::Asset(const boost::json::object& object) {
    v2::Asset asset;
    asset.id = Id(object, "id");
    asset.type = Text(object, "type").value_or(std::string());
    asset.name = Text(object, "name");
    asset.parentID = Id(object, "parent_id");
    asset.projectID = Id(object, "project_id");
    asset.fileSize = Count(object, "filesize");
    return asset;
}

v2::User RecordReader::User(const boost::json::object& object) {
    v2::User user;
    user.id = Id(object, "id");
    user.name = Text(object, "name").value_or(std::string());
    user.username = Text(object, "username").value_or(std::string());
    user.email = Text(object, "email").value_or(std::string());
    return user;
}

}  // namespace vantro::detail
