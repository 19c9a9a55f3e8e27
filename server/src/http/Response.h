// What a route answers: a complete HTTP response with either an in-memory body (JSON, HTML,
// errors) or a file streamed from disk, or the start of an event stream that the connection
// keeps open. Built by handlers on a worker thread and handed to the connection by value.
#pragma once

#include <boost/beast/http/message.hpp>
#include <boost/beast/http/status.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/json/value.hpp>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "http/FileSliceBody.h"

namespace vantroserver::events {
class EventSubscription;
}

namespace vantroserver::http {

namespace beasthttp = boost::beast::http;

class Response {
public:
    using StringMessage = beasthttp::response<beasthttp::string_body>;
    using FileMessage = beasthttp::response<FileSliceBody>;
    using Header = beasthttp::response_header<>;

    Response();

    /// A JSON document with the given status.
    static Response Json(beasthttp::status status, const boost::json::value& body);
    /// `{"error": code, "error_description": description}`, the error shape of every route.
    static Response Error(beasthttp::status status, std::string_view code,
                          std::string_view description);
    /// 404 `not_found`, the answer for anything a user may not see.
    static Response NotFound(std::string_view description = "no such resource");
    /// 400 `invalid_request`.
    static Response BadRequest(std::string_view description);
    static Response Html(beasthttp::status status, std::string body);
    static Response Redirect(std::string_view location);
    static Response NoContent();
    /// A file (or the slice of it the body selects) streamed from disk with 200; see
    /// RangedFile for answers to conditional and range requests.
    static Response File(FileSliceBody::value_type body, std::string_view contentType);
    /// Answers 200 `text/event-stream` and hands the connection to `subscription`.
    static Response EventStream(std::shared_ptr<events::EventSubscription> subscription);

    Header& Head();
    const Header& Head() const;
    beasthttp::status Status() const { return Head().result(); }
    void Set(std::string_view name, std::string_view value);

    bool IsFile() const { return std::holds_alternative<FileMessage>(message); }
    StringMessage& AsString() { return std::get<StringMessage>(message); }
    FileMessage& AsFile() { return std::get<FileMessage>(message); }
    /// The event stream this response starts, or null for an ordinary response.
    const std::shared_ptr<events::EventSubscription>& Stream() const { return stream; }

private:
    std::variant<StringMessage, FileMessage> message;
    std::shared_ptr<events::EventSubscription> stream;
};

}  // namespace vantroserver::http
