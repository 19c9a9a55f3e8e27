#include "api/ResourceEndpoints.h"

#include <boost/json/array.hpp>

#include "api/JsonViews.h"
#include "http/JsonBody.h"
#include "http/Paging.h"
#include "security/Random.h"
#include "store/StoreError.h"

namespace vantroserver::api {

namespace {

using boost::beast::http::status;
using boost::beast::http::verb;
using http::Response;

/// The capture `name` when it has the form of one of our ids; nothing otherwise, so malformed
/// ids answer 404 without asking the database.
std::optional<std::string_view> IdParam(const http::RequestContext& context,
                                        std::string_view name) {
    const auto id = context.Param(name);
    if (!security::IsWellFormedId(id)) {
        return std::nullopt;
    }
    return id;
}

// Every listing's JSON view of an item, except where the item needs more than itself.
constexpr auto kItemView = [](const auto& item) { return JsonViews::Of(item); };

/// Answers one page of a listing: reads `page` and `page_size`, asks `list` for that page and
/// answers a JSON array of its items seen through `view`, with the paging headers. Bad paging
/// parameters answer 400.
template <typename List, typename View = decltype(kItemView)>
Response PagedListing(const http::RequestContext& context, std::size_t defaultPageSize,
                      const List& list, const View& view = kItemView) {
    std::string error;
    const auto paging = http::Paging::FromQuery(context, defaultPageSize, error);
    if (!paging) {
        return Response::BadRequest(error);
    }
    const auto page = list(store::PageRequest{paging->Offset(), paging->Limit()});
    boost::json::array items;
    items.reserve(page.items.size());
    for (const auto& item : page.items) {
        items.push_back(view(item));
    }
    auto response = Response::Json(status::ok, items);
    paging->AddHeaders(response, page.total);
    return response;
}

}  // namespace

ResourceEndpoints::ResourceEndpoints(std::shared_ptr<store::Store> store,
                                     std::shared_ptr<events::EventHub> hub,
                                     std::size_t defaultPageSize)
    : store(std::move(store)), hub(std::move(hub)), defaultPageSize(defaultPageSize) {}

void ResourceEndpoints::AddRoutes(http::Router& router) {
    auto add = [&](verb method, std::string_view pattern, auto member) {
        router.AddMember(method, pattern, http::Router::Access::Bearer, shared_from_this(), member);
    };
    add(verb::get, "/v2/me", &ResourceEndpoints::Me);
    add(verb::get, "/v2/accounts", &ResourceEndpoints::Accounts);
    add(verb::get, "/v2/accounts/{id}", &ResourceEndpoints::Account);
    add(verb::get, "/v2/accounts/{id}/teams", &ResourceEndpoints::Teams);
    add(verb::get, "/v2/accounts/{id}/shared_projects", &ResourceEndpoints::SharedProjects);
    add(verb::get, "/v2/teams/{id}", &ResourceEndpoints::Team);
    add(verb::get, "/v2/teams/{id}/projects", &ResourceEndpoints::Projects);
    add(verb::get, "/v2/projects/{id}", &ResourceEndpoints::Project);
    add(verb::get, "/v2/assets/{id}", &ResourceEndpoints::Asset);
    add(verb::get, "/v2/assets/{id}/children", &ResourceEndpoints::Children);
    add(verb::post, "/v2/assets/{id}/children", &ResourceEndpoints::CreateChild);
    add(verb::get, "/v2/events", &ResourceEndpoints::Events);
}

Response ResourceEndpoints::Me(const http::RequestContext& context) const {
    const auto user = store->Users().Find(context.User().userId);
    if (!user) {
        return Response::NotFound();
    }
    return Response::Json(status::ok, JsonViews::Of(*user));
}

Response ResourceEndpoints::Accounts(const http::RequestContext& context) const {
    return PagedListing(
        context, defaultPageSize,
        [&](store::PageRequest request) {
            return store->Accounts().ListForUser(context.User().userId, request);
        },
        [](const store::VisibleAccount& visible) {
            return JsonViews::Of(visible.account, visible.member);
        });
}

Response ResourceEndpoints::Account(const http::RequestContext& context) const {
    const auto id = IdParam(context, "id");
    if (!id || !store->Access().CanSeeAccount(context.User().userId, *id)) {
        return Response::NotFound();
    }
    const auto account = store->Accounts().Find(*id);
    if (!account) {
        return Response::NotFound();
    }
    return Response::Json(status::ok, JsonViews::Of(*account, store->Accounts().IsMember(
                                                                  *id, context.User().userId)));
}

Response ResourceEndpoints::Teams(const http::RequestContext& context) const {
    const auto id = IdParam(context, "id");
    if (!id || !store->Access().CanSeeAccount(context.User().userId, *id)) {
        return Response::NotFound();
    }
    return PagedListing(context, defaultPageSize, [&](store::PageRequest request) {
        return store->Teams().ListForUser(context.User().userId, *id, request);
    });
}

Response ResourceEndpoints::Team(const http::RequestContext& context) const {
    const auto id = IdParam(context, "id");
    if (!id || !store->Access().CanSeeTeam(context.User().userId, *id)) {
        return Response::NotFound();
    }
    const auto team = store->Teams().Find(*id);
    return team ? Response::Json(status::ok, JsonViews::Of(*team)) : Response::NotFound();
}

Response ResourceEndpoints::Projects(const http::RequestContext& context) const {
    const auto id = IdParam(context, "id");
    if (!id || !store->Access().CanSeeTeam(context.User().userId, *id)) {
        return Response::NotFound();
    }
    return PagedListing(context, defaultPageSize, [&](store::PageRequest request) {
        return store->Projects().ListForTeam(*id, request);
    });
}

Response ResourceEndpoints::SharedProjects(const http::RequestContext& context) const {
    const auto id = IdParam(context, "id");
    if (!id || !store->Access().CanSeeAccount(context.User().userId, *id)) {
        return Response::NotFound();
    }
    return PagedListing(context, defaultPageSize, [&](store::PageRequest request) {
        return store->Projects().ListSharedWith(context.User().userId, *id, request);
    });
}

Response ResourceEndpoints::Project(const http::RequestContext& context) const {
    const auto id = IdParam(context, "id");
    if (!id || !store->Access().CanSeeProject(context.User().userId, *id)) {
        return Response::NotFound();
    }
    const auto project = store->Projects().Find(*id);
    return project ? Response::Json(status::ok, JsonViews::Of(*project)) : Response::NotFound();
}

Response ResourceEndpoints::Asset(const http::RequestContext& context) const {
    const auto id = IdParam(context, "id");
    if (!id || !store->Access().CanSeeAsset(context.User().userId, *id)) {
        return Response::NotFound();
    }
    const auto asset = store->Assets().Find(*id);
    return asset ? Response::Json(status::ok, JsonViews::Of(*asset)) : Response::NotFound();
}

Response ResourceEndpoints::Children(const http::RequestContext& context) const {
    const auto id = IdParam(context, "id");
    if (!id || !store->Access().CanSeeAsset(context.User().userId, *id)) {
        return Response::NotFound();
    }
    return PagedListing(context, defaultPageSize, [&](store::PageRequest request) {
        return store->Assets().Children(*id, request);
    });
}

Response ResourceEndpoints::CreateChild(const http::RequestContext& context) const {
    const auto id = IdParam(context, "id");
    if (!id || !store->Access().CanSeeAsset(context.User().userId, *id)) {
        return Response::NotFound();
    }
    std::string error;
    const auto body = http::JsonBody::ParseObject(context, error);
    if (!body) {
        return Response::BadRequest(error);
    }
    const auto* name = body->if_contains("name");
    const auto* type = body->if_contains("type");
    if (!name || !name->is_string()) {
        return Response::BadRequest("name must be a string");
    }
    if (!type || !type->is_string() || type->as_string() != "folder") {
        return Response::BadRequest("type must be \"folder\"");
    }
    for (const auto& member : *body) {
        if (member.key() != "name" && member.key() != "type") {
            return Response::BadRequest("unknown member " + std::string(member.key()));
        }
    }
    try {
        const auto folder = store->Assets().CreateFolder(*id, std::string_view(name->as_string()));
        return Response::Json(status::created, JsonViews::Of(folder));
    } catch (const store::StoreError& refused) {
        switch (refused.GetKind()) {
            case store::StoreError::Kind::NotFound:
                return Response::NotFound();
            case store::StoreError::Kind::Invalid:
                return Response::BadRequest(refused.what());
            case store::StoreError::Kind::Conflict:
                return Response::Error(status::conflict, "conflict", refused.what());
            case store::StoreError::Kind::StorageLimit:
                return Response::Error(status::insufficient_storage, "storage_limit",
                                       refused.what());
            case store::StoreError::Kind::Database:
                throw;
        }
        throw;
    }
}

Response ResourceEndpoints::Events(const http::RequestContext& context) const {
    return Response::EventStream(hub->Subscribe(context.User().userId));
}

}  // namespace vantroserver::api
