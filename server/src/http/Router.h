// The table of routes: method and path pattern to handler. Filled once before the server starts,
// then only read, from any worker thread.
//
//   router.Add(verb::get, "/v2/assets/{id}", Router::Access::Bearer, handler);
//   auto match = router.Find(verb::get, segments);
#pragma once

#include <boost/beast/http/verb.hpp>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "http/BodySink.h"
#include "http/PathPattern.h"
#include "http/RequestContext.h"
#include "http/Response.h"

namespace vantroserver::http {

class Router {
public:
    using Handler = std::function<Response(RequestContext&)>;
    /// A route whose body is streamed: given the request's header (its body still unread), the
    /// answer at once or the sink that takes the body.
    using StreamStart = std::variant<Response, std::shared_ptr<BodySink>>;
    using StreamHandler = std::function<StreamStart(RequestContext&)>;
    /// Whether the dispatcher checks a bearer token (and applies the rate limit) first.
    enum class Access { Public, Bearer };

    struct Route {
        boost::beast::http::verb method;
        PathPattern pattern;
        Access access;
        Handler handler;              ///< Empty for a streamed route.
        StreamHandler streamHandler;  ///< Set only for a streamed route.
    };
    struct Found {
        const Route* route;
        PathPattern::Captures captures;
    };
    /// The path exists but not for this method; `allowed` goes into the Allow header.
    struct WrongMethod {
        std::string allowed;
    };
    struct NotFound {};
    using Match = std::variant<Found, WrongMethod, NotFound>;

    /// Throws std::invalid_argument for a malformed pattern.
    void Add(boost::beast::http::verb method, std::string_view pattern, Access access,
             Handler handler);
    /// A route answered by a const member function of `endpoints`, which the route holds.
    template <class Endpoints>
    void AddMember(boost::beast::http::verb method, std::string_view pattern, Access access,
                   std::shared_ptr<Endpoints> endpoints,
                   Response (Endpoints::*member)(const RequestContext&) const) {
        Add(method, pattern, access,
            [endpoints = std::move(endpoints), member](RequestContext& context) {
                return ((*endpoints).*member)(context);
            });
    }
    /// A route whose body is not read into memory but handed to the sink `handler` returns.
    void AddStreamed(boost::beast::http::verb method, std::string_view pattern, Access access,
                     StreamHandler handler);
    /// HEAD requests find GET routes (the connection drops the body).
    Match Find(boost::beast::http::verb method, const std::vector<std::string>& segments) const;

private:
    std::vector<Route> routes;
};

}  // namespace vantroserver::http
