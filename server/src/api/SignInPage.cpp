#include "api/SignInPage.h"

#include "web/HtmlDocument.h"

namespace vantroserver::api {

using web::HtmlDocument;

namespace {

std::string Page(std::string_view title, const std::string& body) {
    std::string html;
    html += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
    html += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
    html += "<title>" + HtmlDocument::Escape(title) + "</title>\n";
    html +=
        "<style>body{font-family:sans-serif;max-width:24rem;margin:4rem auto;padding:0 1rem}"
        "label{display:block;margin:.75rem 0 .25rem}input{width:100%;padding:.4rem}"
        "button{margin-top:1rem;padding:.5rem 1.5rem}.message{color:#b00020}</style>\n";
    html += "</head>\n<body>\n" + body + "</body>\n</html>\n";
    return html;
}

}  // namespace

std::string SignInPage::Form(const Fields& hidden, std::string_view username,
                             std::string_view message) {
    std::string body = "<h1>Sign in</h1>\n";
    if (!message.empty()) {
        body += "<p class=\"message\" role=\"alert\">" + HtmlDocument::Escape(message) + "</p>\n";
    }
    body += "<form method=\"post\" action=\"/oauth/authorize\">\n";
    for (const auto& [name, value] : hidden) {
        body += "<input type=\"hidden\" name=\"" + HtmlDocument::Escape(name) + "\" value=\"" +
                HtmlDocument::Escape(value) + "\">\n";
    }
    body += "<label for=\"username\">Username</label>\n";
    body += "<input id=\"username\" name=\"username\" autocomplete=\"username\" required value=\"" +
            HtmlDocument::Escape(username) + "\">\n";
    body += "<label for=\"password\">Password</label>\n";
    body +=
        "<input id=\"password\" name=\"password\" type=\"password\" "
        "autocomplete=\"current-password\" required>\n";
    body += "<button type=\"submit\">Sign in</button>\n</form>\n";
    return Page("Sign in", body);
}

std::string SignInPage::Error(std::string_view message) {
    return Page("Sign-in error", "<h1>Cannot sign in</h1>\n<p class=\"message\">" +
                                     HtmlDocument::Escape(message) + "</p>\n");
}

}  // namespace vantroserver::api
