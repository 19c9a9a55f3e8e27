#include "http/Router.h"

namespace vantroserver::http {

void Router::Add(boost::beast::http::verb method, std::string_view pattern, Access access,
                 Handler handler) {
    routes.push_back(Route{method, PathPattern(pattern), access, std::move(handler), {}});
}

void Router::AddStreamed(boost::beast::http::verb method, std::string_view pattern, Access access,
                         StreamHandler handler) {
    routes.push_back(Route{method, PathPattern(pattern), access, {}, std::move(handler)});
}

Router::Match Router::Find(boost::beast::http::verb method,
                           const std::vector<std::string>& segments) const {
    using boost::beast::http::verb;
    const verb wanted = method == verb::head ? verb::get : method;
    std::string allowed;
    for (const Route& route : routes) {
        auto captures = route.pattern.Match(segments);
        if (!captures) {
            continue;
        }
        if (route.method == wanted) {
            return Found{&route, std::move(*captures)};
        }
        if (!allowed.empty()) {
            allowed += ", ";
        }
        allowed += std::string(boost::beast::http::to_string(route.method));
        if (route.method == verb::get) {
            allowed += ", HEAD";
        }
    }
    if (!allowed.empty()) {
        return WrongMethod{std::move(allowed)};
    }
    return NotFound{};
}

}  // namespace vantroserver::http
