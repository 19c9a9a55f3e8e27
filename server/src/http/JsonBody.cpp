#include "http/JsonBody.h"

#include <boost/beast/http/field.hpp>
#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/parse_options.hpp>

namespace vantroserver::http {

namespace {
// Deep enough for any document the API takes, shallow enough that parsing stays bounded.
constexpr std::size_t kMaxDepth = 32;
}  // namespace

std::optional<boost::json::object> JsonBody::ParseObject(const RequestContext& context,
                                                         std::string& error) {
    const auto type = context.Request()[boost::beast::http::field::content_type];
    const std::string_view mediaType = type.substr(0, type.find(';'));
    if (mediaType != "application/json") {
        error = "the body must be application/json";
        return std::nullopt;
    }
    return ParseObjectText(context.Request().body(), error);
}

std::optional<boost::json::object> JsonBody::ParseObjectText(std::string_view text,
                                                             std::string& error) {
    boost::json::parse_options options;
    options.max_depth = kMaxDepth;
    boost::system::error_code code;
    boost::json::value value = boost::json::parse(text, code, {}, options);
    if (code) {
        error = "the body is not valid JSON: " + code.message();
        return std::nullopt;
    }
    if (!value.is_object()) {
        error = "the body must be a JSON object";
        return std::nullopt;
    }
    return std::move(value.as_object());
}

}  // namespace vantroserver::http
