#include "detail/Records.h"

#include <cmath>
#include <limits>
#include <string>

#include <boost/json/parse.hpp>

#include <vantrocommon/ResultCodes.h>

#include "detail/Futures.h"

namespace vantrosdk::detail {

namespace {

const boost::json::value* Member(const boost::json::value& object, std::string_view name) {
    const auto* members = object.if_object();
    return members ? members->if_contains(name) : nullptr;
}

bool BoolMember(const boost::json::value& object, std::string_view name) {
    const auto* member = Member(object, name);
    return member && member->is_bool() && member->get_bool();
}

std::optional<int> IntMember(const boost::json::value& object, std::string_view name) {
    const auto value = IntegerMember(object, name);
    if (!value || *value < std::numeric_limits<int>::min() ||
        *value > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    return static_cast<int>(*value);
}

}  // namespace

std::optional<vantrocommon::Guid> GuidMember(const boost::json::value& object,
                                             std::string_view name) {
    const auto* member = Member(object, name);
    if (!member || !member->is_string()) {
        return std::nullopt;
    }
    const vantrocommon::Guid id(std::string_view(member->get_string()));
    if (id.IsNil()) {
        return std::nullopt;
    }
    return id;
}

std::string StringMember(const boost::json::value& object, std::string_view name) {
    const auto* member = Member(object, name);
    if (!member || !member->is_string()) {
        return {};
    }
    return std::string(member->get_string());
}

std::optional<std::int64_t> IntegerMember(const boost::json::value& object, std::string_view name) {
    const auto* member = Member(object, name);
    if (!member) {
        return std::nullopt;
    }
    if (member->is_int64()) {
        return member->get_int64();
    }
    if (member->is_uint64()) {
        if (member->get_uint64() >
            static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            return std::nullopt;
        }
        return static_cast<std::int64_t>(member->get_uint64());
    }
    if (member->is_double()) {
        const double number = member->get_double();
        // 2^63 is exactly representable; anything at or above it does not fit.
        if (std::trunc(number) != number || number < -9.2233720368547758e18 ||
            number >= 9.2233720368547758e18) {
            return std::nullopt;
        }
        return static_cast<std::int64_t>(number);
    }
    return std::nullopt;
}

std::optional<std::uint64_t> UnsignedMember(const boost::json::value& object,
                                            std::string_view name) {
    const auto* member = Member(object, name);
    if (member && member->is_uint64()) {
        return member->get_uint64();
    }
    const auto value = IntegerMember(object, name);
    if (!value || *value < 0) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(*value);
}

boost::json::value ParseBody(const vantrocommon::http::Reply& reply) {
    boost::system::error_code error;
    boost::json::value value = boost::json::parse(reply.body, error);
    if (!error) {
        return value;
    }
    if (reply.IsSuccessStatus()) {
        std::rethrow_exception(MakeFailure(
            vantrocommon::kResultBadResponse,
            "the service's answer (status " + std::to_string(reply.status) + ") is not JSON"));
    }
    return nullptr;
}

User ReadUser(const boost::json::value& value) {
    return User{GuidMember(value, "id").value_or(vantrocommon::Guid()), StringMember(value, "name"),
                StringMember(value, "username"), StringMember(value, "email")};
}

Account ReadAccount(const boost::json::value& value) {
    Account account;
    account.id = GuidMember(value, "id").value_or(vantrocommon::Guid());
    account.name = StringMember(value, "name");
    account.storageUsed = UnsignedMember(value, "storage_used");
    // The service sends the limit beside the usage; null means no limit was set.
    if (Member(value, "storage_limit")) {
        account.plan = AccountPlan{UnsignedMember(value, "storage_limit")};
    }
    account.member = BoolMember(value, "member");
    return account;
}

Workspace ReadWorkspace(const boost::json::value& value) {
    return Workspace{GuidMember(value, "id").value_or(vantrocommon::Guid()),
                     StringMember(value, "name"),
                     GuidMember(value, "account_id").value_or(vantrocommon::Guid())};
}

Asset ReadAsset(const boost::json::value& value) {
    Asset asset;
    asset.id = GuidMember(value, "id");
    asset.name = StringMember(value, "name");
    asset.type = StringMember(value, "type");
    asset.parentId = GuidMember(value, "parent_id");
    asset.projectId = GuidMember(value, "project_id").value_or(vantrocommon::Guid());
    asset.filesize = UnsignedMember(value, "filesize").value_or(0);
    asset.version = IntMember(value, "version");
    return asset;
}

Project ReadProject(const boost::json::value& value) {
    Project project;
    project.id = GuidMember(value, "id").value_or(vantrocommon::Guid());
    project.name = StringMember(value, "name");
    project.workspaceId = GuidMember(value, "team_id").value_or(vantrocommon::Guid());
    project.accountId = GuidMember(value, "account_id").value_or(vantrocommon::Guid());
    project.rootAsset.id = GuidMember(value, "root_asset_id");
    project.rootAsset.name = project.name;
    project.rootAsset.type = "folder";
    project.rootAsset.projectId = project.id;
    return project;
}

ReviewLink ReadReviewLink(const boost::json::value& value) {
    ReviewLink link;
    link.id = GuidMember(value, "id");
    if (const auto* url = Member(value, "url"); url && url->is_string()) {
        link.url = std::string(url->get_string());
    }
    link.name = StringMember(value, "name");
    link.projectId = GuidMember(value, "project_id").value_or(vantrocommon::Guid());
    link.itemCount = IntMember(value, "item_count").value_or(0);
    return link;
}

}  // namespace vantrosdk::detail
