// The HTML of a project's review links page at `/projects/{id}/review-links`, for a signed-in
// browser user: each link's name, URL, items and creation time. Stateless; any thread.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "store/Project.h"
#include "store/ReviewLink.h"
#include "store/ReviewLinkItem.h"

namespace vantroserver::web {

class ReviewLinksPage {
public:
    using LinkWithItems = std::pair<store::ReviewLink, std::vector<store::ReviewLinkItem>>;

    /// The page's body (HTML); `publicBase` makes the links' absolute URLs.
    static std::string Body(const store::Project& project, const std::vector<LinkWithItems>& links,
                            std::string_view publicBase);
};

}  // namespace vantroserver::web
