#include "http/Response.h"

#include <boost/json/serialize.hpp>

namespace vantroserver::http {

Response::Response() : message(StringMessage{beasthttp::status::ok, 11}) {}

Response Response::Json(beasthttp::status status, const boost::json::value& body) {
    Response response;
    auto& m = response.AsString();
    m.result(status);
    m.set(beasthttp::field::content_type, "application/json");
    m.body() = boost::json::serialize(body);
    return response;
}

Response Response::Error(beasthttp::status status, std::string_view code,
                         std::string_view description) {
    return Json(status, boost::json::object{{"error", code}, {"error_description", description}});
}

Response Response::NotFound(std::string_view description) {
    return Error(beasthttp::status::not_found, "not_found", description);
}

Response Response::BadRequest(std::string_view description) {
    return Error(beasthttp::status::bad_request, "invalid_request", description);
}

Response Response::Html(beasthttp::status status, std::string body) {
    Response response;
    auto& m = response.AsString();
    m.result(status);
    m.set(beasthttp::field::content_type, "text/html; charset=utf-8");
    // Sign-in pages must not be framed by other sites nor cached with their hidden fields.
    m.set(beasthttp::field::cache_control, "no-store");
    m.set("X-Frame-Options", "DENY");
    m.body() = std::move(body);
    return response;
}

Response Response::Redirect(std::string_view location) {
    Response response;
    auto& m = response.AsString();
    m.result(beasthttp::status::found);
    m.set(beasthttp::field::location, location);
    m.set(beasthttp::field::cache_control, "no-store");
    return response;
}

Response Response::NoContent() {
    Response response;
    response.AsString().result(beasthttp::status::no_content);
    return response;
}

Response Response::File(FileSliceBody::value_type body, std::string_view contentType) {
    Response response;
    FileMessage m{beasthttp::status::ok, 11};
    m.set(beasthttp::field::content_type, contentType);
    m.body() = std::move(body);
    response.message = std::move(m);
    return response;
}

Response Response::EventStream(std::shared_ptr<events::EventSubscription> subscription) {
    Response response;
    auto& m = response.AsString();
    m.set(beasthttp::field::content_type, "text/event-stream");
    m.set(beasthttp::field::cache_control, "no-cache");
    response.stream = std::move(subscription);
    return response;
}

Response::Header& Response::Head() {
    return std::visit([](auto& m) -> Header& { return m; }, message);
}

const Response::Header& Response::Head() const {
    return std::visit([](const auto& m) -> const Header& { return m; }, message);
}

void Response::Set(std::string_view name, std::string_view value) {
    Head().set(name, value);
}

}  // namespace vantroserver::http
