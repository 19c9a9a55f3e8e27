#include "http/RequestContext.h"

namespace vantroserver::http {

RequestContext::RequestContext(const Message& request, std::vector<std::string> pathSegments,
                               std::vector<std::pair<std::string, std::string>> query)
    : request(request), pathSegments(std::move(pathSegments)), query(std::move(query)) {}

std::string_view RequestContext::Param(std::string_view name) const {
    const auto found = captures.find(name);
    return found == captures.end() ? std::string_view{} : std::string_view{found->second};
}

std::optional<std::string_view> RequestContext::Query(std::string_view name) const {
    for (const auto& [key, value] : query) {
        if (key == name) {
            return std::string_view{value};
        }
    }
    return std::nullopt;
}

}  // namespace vantroserver::http
