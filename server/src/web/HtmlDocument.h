// The shell of every web page the server renders (review page, project pages, sign-in, legal):
// one responsive stylesheet, escaping of every value, and the headers pages share: a strict
// Content-Security-Policy (no scripts; the inline stylesheet is allowed by a per-answer nonce),
// `Cache-Control: no-cache`, no referrer (review URLs carry their token). Stateless; any thread.
//
//   std::string body = "<h1>" + HtmlDocument::Escape(name) + "</h1>";
//   return HtmlDocument::Answer(status::ok, name, body);
#pragma once

#include <boost/beast/http/status.hpp>
#include <string>
#include <string_view>

#include "http/Response.h"

namespace vantroserver::web {

class HtmlDocument {
public:
    /// `&`, `<`, `>`, `"` and `'` as entities; safe in text and in quoted attributes.
    static std::string Escape(std::string_view text);

    /// A complete page with `title` and `body` (already HTML) and the shared headers.
    static http::Response Answer(boost::beast::http::status status, std::string_view title,
                                 std::string_view body);
};

}  // namespace vantroserver::web
