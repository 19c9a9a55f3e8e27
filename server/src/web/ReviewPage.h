// The HTML of a review link's page at `/r/{token}`: the chosen item's name, an HTML5 player of
// the file shown (the newest version unless an older one was chosen), the versions of its stack
// newest first, and the link's items when it holds several. Stateless; any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "store/Asset.h"
#include "store/ReviewLink.h"
#include "store/ReviewLinkItem.h"

namespace vantroserver::web {

class ReviewPage {
public:
    struct View {
        const store::ReviewLink& link;
        const std::vector<store::ReviewLinkItem>& items;
        std::size_t selectedItem = 0;               ///< Index into `items`.
        const std::vector<store::Asset>& versions;  ///< Of the selected item's stack, newest first.
        std::optional<store::Asset> shown;          ///< The file played; none for an empty stack.
    };

    /// The page's body (HTML) for HtmlDocument::Answer.
    static std::string Body(const View& view);
    /// `/r/<token>/media/<file id>`: where the player reads the file.
    static std::string MediaPath(const store::ReviewLink& link, const store::Asset& file);
    /// `/r/<token>?item=<asset id>[&version=N]`.
    static std::string PagePath(const store::ReviewLink& link, const store::ReviewLinkItem& item,
                                std::int64_t version = 0);
};

}  // namespace vantroserver::web
