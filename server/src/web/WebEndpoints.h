// The server's web pages for browsers: the review page of a link and its media (with ranges),
// the review links page of a project behind a cookie session with its sign-in form, and the
// legal pages. Review pages need no account: the link's token is the capability. Everything a
// visitor may not see answers 404. Owned by the router's handlers; any thread.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "http/PublicBase.h"
#include "http/Router.h"
#include "store/Store.h"
#include "web/WebSessionCookie.h"

namespace vantroserver::web {

class WebEndpoints : public std::enable_shared_from_this<WebEndpoints> {
public:
    /// `mediaDirectory` holds the bytes of each file asset under its id; `secureCookies` when
    /// the server speaks TLS.
    WebEndpoints(std::shared_ptr<store::Store> store,
                 std::shared_ptr<const http::PublicBase> publicBase, std::string_view signingKey,
                 std::filesystem::path mediaDirectory, bool secureCookies);

    /// Adds the page routes; they hold this object.
    void AddRoutes(http::Router& router);

    http::Response Review(const http::RequestContext& context) const;
    http::Response Media(const http::RequestContext& context) const;
    http::Response ProjectReviewLinks(const http::RequestContext& context) const;
    http::Response SignInForm(const http::RequestContext& context) const;
    http::Response SignIn(const http::RequestContext& context) const;
    http::Response Terms(const http::RequestContext& context) const;
    http::Response Privacy(const http::RequestContext& context) const;

private:
    std::shared_ptr<store::Store> store;
    std::shared_ptr<const http::PublicBase> publicBase;
    WebSessionCookie sessions;
    std::filesystem::path mediaDirectory;
    const bool secureCookies;
};

}  // namespace vantroserver::web
