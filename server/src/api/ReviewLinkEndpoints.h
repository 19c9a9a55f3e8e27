// The JSON API of review links for a signed-in user: create a link in a project, add files and
// version stacks to it, read it with its items, list a project's links. Whoever sees the
// project manages its links; anything else answers 404. Owned by the router's handlers; any
// thread.
#pragma once

#include <cstddef>
#include <memory>

#include "http/PublicBase.h"
#include "http/Router.h"
#include "store/Store.h"

namespace vantroserver::api {

class ReviewLinkEndpoints : public std::enable_shared_from_this<ReviewLinkEndpoints> {
public:
    ReviewLinkEndpoints(std::shared_ptr<store::Store> store,
                        std::shared_ptr<const http::PublicBase> publicBase,
                        std::size_t defaultPageSize);

    /// Adds the review link routes under /v2; they hold this object.
    void AddRoutes(http::Router& router);

    http::Response Create(const http::RequestContext& context) const;
    http::Response List(const http::RequestContext& context) const;
    http::Response Link(const http::RequestContext& context) const;
    http::Response AddAssets(const http::RequestContext& context) const;

private:
    /// The link `id` names when the user sees its project.
    std::optional<store::ReviewLink> VisibleLink(const http::RequestContext& context) const;
    http::Response LinkWithItems(const store::ReviewLink& link) const;

    std::shared_ptr<store::Store> store;
    std::shared_ptr<const http::PublicBase> publicBase;
    const std::size_t defaultPageSize;
};

}  // namespace vantroserver::api
