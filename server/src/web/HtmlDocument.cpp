#include "web/HtmlDocument.h"

#include "security/Encoding.h"
#include "security/Random.h"

namespace vantroserver::web {

namespace {

// Phone first: one column that widens, a player as wide as the column, the lists under it;
// side by side from 56rem up.
constexpr std::string_view kStyle =
    "*{box-sizing:border-box}"
    "body{margin:0;font-family:system-ui,sans-serif;line-height:1.4;color:#1d1d1f;"
    "background:#f5f5f7}"
    "header,main,footer{max-width:72rem;margin:0 auto;padding:.75rem 1rem}"
    "header{display:flex;flex-wrap:wrap;gap:.5rem;align-items:baseline;"
    "justify-content:space-between}"
    "h1{font-size:1.4rem;margin:.25rem 0;overflow-wrap:anywhere}"
    "h2{font-size:1.05rem;margin:1rem 0 .5rem}"
    "a{color:#0a58ca}"
    ".muted{color:#6e6e73;font-size:.9rem}"
    ".player video{display:block;width:100%;max-height:75vh;background:#000;border-radius:.4rem}"
    ".lists ol,.lists ul{list-style:none;margin:0;padding:0}"
    ".lists li{padding:.45rem .6rem;border-radius:.3rem;background:#fff;margin-bottom:.3rem}"
    ".lists li[aria-current]{outline:2px solid #0a58ca}"
    "table{width:100%;border-collapse:collapse;background:#fff}"
    "th,td{text-align:left;padding:.45rem .6rem;border-bottom:1px solid #e5e5ea;"
    "vertical-align:top;overflow-wrap:anywhere}"
    "form{max-width:24rem}"
    "label{display:block;margin:.75rem 0 .25rem}"
    "input{width:100%;padding:.45rem;font:inherit}"
    "button{margin-top:1rem;padding:.5rem 1.5rem;font:inherit}"
    ".message{color:#b00020}"
    "footer{font-size:.85rem}"
    "@media (min-width:56rem){.review{display:grid;grid-template-columns:minmax(0,3fr) "
    "minmax(14rem,1fr);gap:1.25rem}}";

}  // namespace

std::string HtmlDocument::Escape(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&#39;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

http::Response HtmlDocument::Answer(boost::beast::http::status status, std::string_view title,
                                    std::string_view body) {
    const std::string nonce = security::Base64UrlEncode(security::RandomBytes(16));
    std::string html;
    html.reserve(body.size() + kStyle.size() + 512);
    html += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
    html += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
    html += "<title>" + Escape(title) + "</title>\n";
    html += "<style nonce=\"" + nonce + "\">";
    html += kStyle;
    html += "</style>\n</head>\n<body>\n";
    html += body;
    html +=
        "<footer class=\"muted\"><a href=\"/legal/terms\">Terms</a> · "
        "<a href=\"/legal/privacy\">Privacy</a></footer>\n</body>\n</html>\n";

    auto response = http::Response::Html(status, std::move(html));
    response.Set("Cache-Control", "no-cache");
    response.Set("Content-Security-Policy",
                 "default-src 'none'; style-src 'nonce-" + nonce +
                     "'; media-src 'self'; img-src 'self'; form-action 'self'; "
                     "base-uri 'none'; frame-ancestors 'none'");
    response.Set("Referrer-Policy", "no-referrer");
    response.Set("X-Content-Type-Options", "nosniff");
    return response;
}

}  // namespace vantroserver::web
