#include "api/ReviewLinkEndpoints.h"

#include <boost/json/array.hpp>

#include "api/ReviewLinkViews.h"
#include "http/JsonBody.h"
#include "http/Paging.h"
#include "security/Random.h"
#include "store/StoreError.h"

namespace vantroserver::api {

namespace {

using boost::beast::http::status;
using boost::beast::http::verb;
using http::Response;

/// Only the members a route knows; anything else is a mistake the client should hear about.
std::optional<std::string> UnknownMember(const boost::json::object& body, std::string_view known) {
    for (const auto& member : body) {
        if (member.key() != known) {
            return "unknown member " + std::string(member.key());
        }
    }
    return std::nullopt;
}

Response Refusal(const store::StoreError& refused) {
    switch (refused.GetKind()) {
        case store::StoreError::Kind::NotFound:
            return Response::NotFound();
        case store::StoreError::Kind::Invalid:
            return Response::BadRequest(refused.what());
        default:
            throw refused;
    }
}

}  // namespace

ReviewLinkEndpoints::ReviewLinkEndpoints(std::shared_ptr<store::Store> store,
                                         std::shared_ptr<const http::PublicBase> publicBase,
                                         std::size_t defaultPageSize)
    : store(std::move(store)),
      publicBase(std::move(publicBase)),
      defaultPageSize(defaultPageSize) {}

void ReviewLinkEndpoints::AddRoutes(http::Router& router) {
    auto add = [&](verb method, std::string_view pattern, auto member) {
        router.AddMember(method, pattern, http::Router::Access::Bearer, shared_from_this(), member);
    };
    add(verb::post, "/v2/projects/{id}/review_links", &ReviewLinkEndpoints::Create);
    add(verb::get, "/v2/projects/{id}/review_links", &ReviewLinkEndpoints::List);
    add(verb::get, "/v2/review_links/{id}", &ReviewLinkEndpoints::Link);
    add(verb::post, "/v2/review_links/{id}/assets", &ReviewLinkEndpoints::AddAssets);
}

Response ReviewLinkEndpoints::Create(const http::RequestContext& context) const {
    const auto projectId = context.Param("id");
    if (!security::IsWellFormedId(projectId) ||
        !store->Access().CanSeeProject(context.User().userId, projectId)) {
        return Response::NotFound();
    }
    std::string error;
    const auto body = http::JsonBody::ParseObject(context, error);
    if (!body) {
        return Response::BadRequest(error);
    }
    const auto* name = body->if_contains("name");
    if (!name || !name->is_string()) {
        return Response::BadRequest("name must be a string");
    }
    if (const auto unknown = UnknownMember(*body, "name")) {
        return Response::BadRequest(*unknown);
    }
    try {
        const auto link = store->ReviewLinks().Create(projectId, context.User().userId,
                                                      std::string_view(name->as_string()));
        return Response::Json(status::created, ReviewLinkViews::Of(link, publicBase->Url()));
    } catch (const store::StoreError& refused) {
        return Refusal(refused);
    }
}

Response ReviewLinkEndpoints::List(const http::RequestContext& context) const {
    const auto projectId = context.Param("id");
    if (!security::IsWellFormedId(projectId) ||
        !store->Access().CanSeeProject(context.User().userId, projectId)) {
        return Response::NotFound();
    }
    std::string error;
    const auto paging = http::Paging::FromQuery(context, defaultPageSize, error);
    if (!paging) {
        return Response::BadRequest(error);
    }
    const auto page = store->ReviewLinks().ListForProject(
        projectId, store::PageRequest{paging->Offset(), paging->Limit()});
    const std::string base = publicBase->Url();
    boost::json::array items;
    items.reserve(page.items.size());
    for (const auto& link : page.items) {
        items.push_back(ReviewLinkViews::Of(link, base));
    }
    auto response = Response::Json(status::ok, items);
    paging->AddHeaders(response, page.total);
    return response;
}

std::optional<store::ReviewLink> ReviewLinkEndpoints::VisibleLink(
    const http::RequestContext& context) const {
    auto link = store->ReviewLinks().Find(context.Param("id"));
    if (!link || !store->Access().CanSeeProject(context.User().userId, link->projectId)) {
        return std::nullopt;
    }
    return link;
}

Response ReviewLinkEndpoints::LinkWithItems(const store::ReviewLink& link) const {
    return Response::Json(status::ok, ReviewLinkViews::Of(link, publicBase->Url(),
                                                          store->ReviewLinks().Items(link.id)));
}

Response ReviewLinkEndpoints::Link(const http::RequestContext& context) const {
    const auto link = VisibleLink(context);
    return link ? LinkWithItems(*link) : Response::NotFound();
}

Response ReviewLinkEndpoints::AddAssets(const http::RequestContext& context) const {
    const auto link = VisibleLink(context);
    if (!link) {
        return Response::NotFound();
    }
    std::string error;
    const auto body = http::JsonBody::ParseObject(context, error);
    if (!body) {
        return Response::BadRequest(error);
    }
    const auto* ids = body->if_contains("asset_ids");
    if (!ids || !ids->is_array()) {
        return Response::BadRequest("asset_ids must be an array of asset ids");
    }
    if (const auto unknown = UnknownMember(*body, "asset_ids")) {
        return Response::BadRequest(*unknown);
    }
    std::vector<std::string> assetIds;
    assetIds.reserve(ids->as_array().size());
    for (const auto& id : ids->as_array()) {
        if (!id.is_string()) {
            return Response::BadRequest("asset_ids must be an array of asset ids");
        }
        assetIds.emplace_back(id.as_string());
    }
    // The link's project is visible to the user and every asset must lie in it, so an asset
    // the user cannot see is one the store does not find there: 404 either way.
    try {
        store->ReviewLinks().AddItems(link->id, assetIds);
    } catch (const store::StoreError& refused) {
        return Refusal(refused);
    }
    return LinkWithItems(*store->ReviewLinks().Find(link->id));
}

}  // namespace vantroserver::api
