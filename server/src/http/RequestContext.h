// One request as a route handler sees it: the parsed message, its path captures and query
// parameters, and who sent it once the bearer token was checked. Lives on the stack of the
// worker thread that dispatches the request.
#pragma once

#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "http/PathPattern.h"

namespace vantroserver::http {

class RequestContext {
public:
    using Message = boost::beast::http::request<boost::beast::http::string_body>;
    /// A request's start line and fields, without its body.
    using Header = boost::beast::http::request_header<>;

    /// The signed-in user of a bearer-authenticated route.
    struct Principal {
        std::string userId;
        std::string clientId;
        std::string token;
    };

    RequestContext(const Message& request, std::vector<std::string> pathSegments,
                   std::vector<std::pair<std::string, std::string>> query);

    const Message& Request() const { return request; }
    const std::vector<std::string>& PathSegments() const { return pathSegments; }

    /// The capture `name` of the matched route; empty when the route has none by that name.
    std::string_view Param(std::string_view name) const;
    /// The first query parameter `name` (percent-decoded), if present.
    std::optional<std::string_view> Query(std::string_view name) const;

    void SetCaptures(PathPattern::Captures value) { captures = std::move(value); }
    void SetPrincipal(Principal value) { principal = std::move(value); }
    /// The authenticated user; only valid on routes that require a bearer token.
    const Principal& User() const { return *principal; }
    bool HasUser() const { return principal.has_value(); }

private:
    const Message& request;
    std::vector<std::string> pathSegments;
    std::vector<std::pair<std::string, std::string>> query;
    PathPattern::Captures captures;
    std::optional<Principal> principal;
};

}  // namespace vantroserver::http
