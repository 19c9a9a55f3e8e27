// The JSON API under /v2 for a signed-in user: who they are, their accounts, teams, projects
// (their teams' and those shared with them), assets and folder creation, and the event stream.
// Anything the user may not see answers 404, as does a malformed id. Owned by the router's
// handlers; any thread.
#pragma once

#include <cstddef>
#include <memory>

#include "events/EventHub.h"
#include "http/Router.h"
#include "store/Store.h"

namespace vantroserver::api {

class ResourceEndpoints : public std::enable_shared_from_this<ResourceEndpoints> {
public:
    ResourceEndpoints(std::shared_ptr<store::Store> store, std::shared_ptr<events::EventHub> hub,
                      std::size_t defaultPageSize);

    /// Adds every /v2 route; they hold this object.
    void AddRoutes(http::Router& router);

    http::Response Me(const http::RequestContext& context) const;
    http::Response Accounts(const http::RequestContext& context) const;
    http::Response Account(const http::RequestContext& context) const;
    http::Response Teams(const http::RequestContext& context) const;
    http::Response Team(const http::RequestContext& context) const;
    http::Response Projects(const http::RequestContext& context) const;
    http::Response SharedProjects(const http::RequestContext& context) const;
    http::Response Project(const http::RequestContext& context) const;
    http::Response Asset(const http::RequestContext& context) const;
    http::Response Children(const http::RequestContext& context) const;
    http::Response CreateChild(const http::RequestContext& context) const;
    http::Response Events(const http::RequestContext& context) const;

private:
    std::shared_ptr<store::Store> store;
    std::shared_ptr<events::EventHub> hub;
    const std::size_t defaultPageSize;
};

}  // namespace vantroserver::api
