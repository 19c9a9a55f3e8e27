#include "api/ReviewLinkViews.h"

#include <boost/json/array.hpp>

#include "api/JsonViews.h"

namespace vantroserver::api {

std::string ReviewLinkViews::Url(const store::ReviewLink& link, std::string_view publicBase) {
    return std::string(publicBase) + "/r/" + link.token;
}

boost::json::object ReviewLinkViews::Of(const store::ReviewLink& link,
                                        std::string_view publicBase) {
    return {{"id", link.id},
            {"name", link.name},
            {"project_id", link.projectId},
            {"url", Url(link, publicBase)},
            {"created_at", store::FormatIso8601(link.createdAt)},
            {"item_count", link.itemCount}};
}

boost::json::object ReviewLinkViews::Of(const store::ReviewLink& link, std::string_view publicBase,
                                        const std::vector<store::ReviewLinkItem>& items) {
    auto object = Of(link, publicBase);
    boost::json::array array;
    array.reserve(items.size());
    for (const auto& item : items) {
        array.push_back(Of(item));
    }
    // The count from the items read just now, so the two never disagree in one answer.
    object["item_count"] = static_cast<std::int64_t>(items.size());
    object["items"] = std::move(array);
    return object;
}

boost::json::object ReviewLinkViews::Of(const store::ReviewLinkItem& item) {
    boost::json::object object{{"asset_id", item.added.id},
                               {"type", store::AssetTypeName(item.added.type)},
                               {"version_count", item.versionCount}};
    if (item.versionStack) {
        object["version_stack_id"] = item.versionStack->id;
    } else {
        object["version_stack_id"] = nullptr;
    }
    if (item.current) {
        object["current"] = JsonViews::Of(*item.current);
    } else {
        object["current"] = nullptr;
    }
    return object;
}

}  // namespace vantroserver::api
