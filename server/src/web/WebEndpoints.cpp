#include "web/WebEndpoints.h"

#include <algorithm>
#include <boost/beast/http/field.hpp>
#include <cctype>
#include <charconv>

#include "http/FormFields.h"
#include "http/RangedFile.h"
#include "http/StaticFiles.h"
#include "security/Random.h"
#include "web/HtmlDocument.h"
#include "web/ReviewLinksPage.h"
#include "web/ReviewPage.h"

namespace vantroserver::web {

namespace {

using boost::beast::http::field;
using boost::beast::http::status;
using boost::beast::http::verb;
using http::Response;

Response NotFoundPage() {
    return HtmlDocument::Answer(status::not_found, "Not found",
                                "<main><h1>Not found</h1><p>There is nothing at this address. "
                                "The link may be mistyped or no longer shared.</p></main>\n");
}

/// Where to go after signing in: only a path on this server, so the form cannot be used to
/// send people elsewhere.
std::string SafeNext(std::string_view next) {
    if (next.empty() || next.front() != '/' || next.starts_with("//") ||
        next.find('\\') != std::string_view::npos ||
        next.find_first_of("\r\n") != std::string_view::npos) {
        return "/";
    }
    return std::string(next);
}

std::string PercentEncode(std::string_view text) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) || c == '-' || c == '_' || c == '.' || c == '~' || c == '/') {
            encoded += c;
        } else {
            encoded += '%';
            encoded += kHex[byte >> 4];
            encoded += kHex[byte & 0xF];
        }
    }
    return encoded;
}

std::string SignInBody(std::string_view next, std::string_view username, std::string_view message) {
    std::string html = "<main>\n<h1>Sign in</h1>\n";
    if (!message.empty()) {
        html += "<p class=\"message\" role=\"alert\">" + HtmlDocument::Escape(message) + "</p>\n";
    }
    html += "<form method=\"post\" action=\"/signin\">\n";
    html += "<input type=\"hidden\" name=\"next\" value=\"" + HtmlDocument::Escape(next) + "\">\n";
    html += "<label for=\"username\">Username</label>\n";
    html += "<input id=\"username\" name=\"username\" autocomplete=\"username\" required value=\"" +
            HtmlDocument::Escape(username) + "\">\n";
    html += "<label for=\"password\">Password</label>\n";
    html +=
        "<input id=\"password\" name=\"password\" type=\"password\" "
        "autocomplete=\"current-password\" required>\n";
    html += "<button type=\"submit\">Sign in</button>\n</form>\n</main>\n";
    return html;
}

std::optional<std::int64_t> ParseVersion(std::string_view text) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value < 1) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

WebEndpoints::WebEndpoints(std::shared_ptr<store::Store> store,
                           std::shared_ptr<const http::PublicBase> publicBase,
                           std::string_view signingKey, std::filesystem::path mediaDirectory,
                           bool secureCookies)
    : store(store),
      publicBase(std::move(publicBase)),
      sessions(signingKey, [store] { return store->Now(); }),
      mediaDirectory(std::move(mediaDirectory)),
      secureCookies(secureCookies) {}

void WebEndpoints::AddRoutes(http::Router& router) {
    auto add = [&](verb method, std::string_view pattern, auto member) {
        router.AddMember(method, pattern, http::Router::Access::Public, shared_from_this(), member);
    };
    add(verb::get, "/r/{token}", &WebEndpoints::Review);
    add(verb::get, "/r/{token}/media/{id}", &WebEndpoints::Media);
    add(verb::get, "/projects/{id}/review-links", &WebEndpoints::ProjectReviewLinks);
    add(verb::get, "/signin", &WebEndpoints::SignInForm);
    add(verb::post, "/signin", &WebEndpoints::SignIn);
    add(verb::get, "/legal/terms", &WebEndpoints::Terms);
    add(verb::get, "/legal/privacy", &WebEndpoints::Privacy);
}

Response WebEndpoints::Review(const http::RequestContext& context) const {
    const auto link = store->ReviewLinks().FindByToken(context.Param("token"));
    if (!link) {
        return NotFoundPage();
    }
    const auto items = store->ReviewLinks().Items(link->id);
    if (items.empty()) {
        return HtmlDocument::Answer(
            status::ok, link->name,
            "<header><h1>" + HtmlDocument::Escape(link->name) +
                "</h1></header>\n<main><p>Nothing has been added to this link yet.</p></main>\n");
    }
    std::size_t selected = 0;
    if (const auto wanted = context.Query("item")) {
        const auto found = std::find_if(items.begin(), items.end(),
                                        [&](const auto& item) { return item.added.id == *wanted; });
        if (found == items.end()) {
            return NotFoundPage();
        }
        selected = static_cast<std::size_t>(found - items.begin());
    }
    const auto& item = items[selected];
    std::vector<store::Asset> versions;
    if (item.versionStack) {
        versions = store->ReviewLinks().Versions(item.versionStack->id);
    }
    // Resolved now: the newest version unless an older one was asked for.
    std::optional<store::Asset> shown =
        item.versionStack ? (versions.empty() ? std::nullopt : std::optional(versions.front()))
                          : item.current;
    if (const auto text = context.Query("version")) {
        const auto number = ParseVersion(*text);
        const auto found =
            std::find_if(versions.begin(), versions.end(),
                         [&](const store::Asset& version) { return number == version.version; });
        if (found == versions.end()) {
            return NotFoundPage();
        }
        shown = *found;
    }
    const std::string& title = item.versionStack ? item.versionStack->name : item.added.name;
    return HtmlDocument::Answer(
        status::ok, title,
        ReviewPage::Body(ReviewPage::View{*link, items, selected, versions, shown}));
}

Response WebEndpoints::Media(const http::RequestContext& context) const {
    const auto link = store->ReviewLinks().FindByToken(context.Param("token"));
    const auto fileId = context.Param("id");
    if (!link || !store->ReviewLinks().HoldsFile(link->id, fileId)) {
        return Response::Error(status::not_found, "not_found", "no such resource");
    }
    const auto file = store->Assets().Find(fileId);
    if (!file) {
        return Response::Error(status::not_found, "not_found", "no such resource");
    }
    http::RangedFile::Options options;
    options.contentType = http::StaticFiles::ContentType(file->name);
    // The bytes of a file asset never change once it exists: its id is a strong validator and
    // the answer may be kept. Private, as the URL is a capability.
    options.etag = "\"" + file->id + "\"";
    options.cacheControl = "private, max-age=31536000, immutable";
    auto response =
        http::RangedFile::Serve(context, mediaDirectory / std::string(file->id), options);
    response.Set("Referrer-Policy", "no-referrer");
    return response;
}

Response WebEndpoints::ProjectReviewLinks(const http::RequestContext& context) const {
    const auto userId = sessions.UserOf(context.Request()[field::cookie]);
    if (!userId || !store->Users().Find(*userId)) {
        return Response::Redirect("/signin?next=" +
                                  PercentEncode(std::string(context.Request().target())));
    }
    const auto projectId = context.Param("id");
    if (!security::IsWellFormedId(projectId) ||
        !store->Access().CanSeeProject(*userId, projectId)) {
        return NotFoundPage();
    }
    const auto project = store->Projects().Find(projectId);
    if (!project) {
        return NotFoundPage();
    }
    std::vector<ReviewLinksPage::LinkWithItems> links;
    // A page of a human's links: the first thousand is more than anyone reads on one page.
    const auto page = store->ReviewLinks().ListForProject(projectId, store::PageRequest{0, 1000});
    for (const auto& link : page.items) {
        links.emplace_back(link, store->ReviewLinks().Items(link.id));
    }
    return HtmlDocument::Answer(status::ok, project->name + ": review links",
                                ReviewLinksPage::Body(*project, links, publicBase->Url()));
}

Response WebEndpoints::SignInForm(const http::RequestContext& context) const {
    const std::string next = SafeNext(context.Query("next").value_or("/"));
    return HtmlDocument::Answer(status::ok, "Sign in", SignInBody(next, {}, {}));
}

Response WebEndpoints::SignIn(const http::RequestContext& context) const {
    const auto type = context.Request()[field::content_type];
    const std::string_view mediaType = std::string_view(type).substr(0, type.find(';'));
    if (mediaType != "application/x-www-form-urlencoded") {
        return HtmlDocument::Answer(
            status::bad_request, "Sign in",
            SignInBody("/", {}, "The sign-in form was not sent as a form."));
    }
    const auto fields = http::FormFields::Parse(context.Request().body());
    const auto value = [&](std::string_view name) {
        const auto found = fields ? http::FormFields::Find(*fields, name) : std::nullopt;
        return found ? std::string(*found) : std::string{};
    };
    const std::string next = SafeNext(value("next"));
    const std::string username = value("username");
    const std::string password = value("password");
    // The same check as the OAuth form, with the same cost for unknown users.
    const auto user = username.empty() || password.empty()
                          ? std::nullopt
                          : store->Users().Authenticate(username, password);
    if (!user) {
        return HtmlDocument::Answer(status::ok, "Sign in",
                                    SignInBody(next, username, "Wrong username or password."));
    }
    auto response = Response::Redirect(next);
    response.Head().result(status::see_other);
    response.Set("Set-Cookie", sessions.SetCookieHeader(user->id, secureCookies));
    return response;
}

Response WebEndpoints::Terms(const http::RequestContext&) const {
    return HtmlDocument::Answer(
        status::ok, "Terms of use",
        "<main><h1>Terms of use</h1>\n"
        "<p>This server lets a team share its work for review. Review links are meant for the "
        "people they were sent to; anyone holding a link can watch what it holds.</p>\n"
        "<p>Upload only material you have the right to share. The operator of this server may "
        "remove material or links at any time.</p>\n"
        "<p>The service is provided as is, without any warranty.</p></main>\n");
}

Response WebEndpoints::Privacy(const http::RequestContext&) const {
    return HtmlDocument::Answer(
        status::ok, "Privacy",
        "<main><h1>Privacy</h1>\n"
        "<p>This server keeps the accounts, projects and files its users put on it, and nothing "
        "about visitors of review links beyond what its operator's logs record.</p>\n"
        "<p>Signing in to the web pages sets one cookie that keeps you signed in for twelve "
        "hours; it is not used for anything else. Review pages set no cookies and send no "
        "referrer.</p></main>\n");
}

}  // namespace vantroserver::web
