// How the API shows review links as JSON: the link with its absolute URL and, when asked, its
// items as they read now (a stacked item shows its stack's newest version). Stateless; any
// thread.
#pragma once

#include <boost/json/object.hpp>
#include <string_view>
#include <vector>

#include "store/ReviewLink.h"
#include "store/ReviewLinkItem.h"

namespace vantroserver::api {

class ReviewLinkViews {
public:
    /// `{"id", "name", "project_id", "url", "created_at", "item_count"}`; `publicBase` is the
    /// server's public address without a trailing slash.
    static boost::json::object Of(const store::ReviewLink& link, std::string_view publicBase);
    /// The same plus `"items"`.
    static boost::json::object Of(const store::ReviewLink& link, std::string_view publicBase,
                                  const std::vector<store::ReviewLinkItem>& items);
    /// `{"asset_id", "type", "version_stack_id", "version_count", "current"}`.
    static boost::json::object Of(const store::ReviewLinkItem& item);
    /// `<publicBase>/r/<token>`.
    static std::string Url(const store::ReviewLink& link, std::string_view publicBase);
};

}  // namespace vantroserver::api
