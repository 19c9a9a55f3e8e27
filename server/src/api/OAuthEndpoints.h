// The sign-in endpoints: the authorization code flow with PKCE S256 for public clients that
// redirect to a loopback address. `GET /oauth/authorize` shows the sign-in form, `POST` checks
// the password and redirects with a single-use code, `POST /oauth/token` exchanges codes and
// rotates refresh tokens, `POST /oauth/revoke` revokes a refresh token's family. Owned by the
// router's handlers; any thread.
#pragma once

#include <memory>

#include "api/AccessTokens.h"
#include "http/Router.h"
#include "store/Store.h"

namespace vantroserver::api {

class OAuthEndpoints : public std::enable_shared_from_this<OAuthEndpoints> {
public:
    OAuthEndpoints(std::shared_ptr<store::Store> store, std::shared_ptr<const AccessTokens> tokens);

    /// Adds the four routes; they hold this object.
    void AddRoutes(http::Router& router);

    /// Whether `uri` is an http URI on 127.0.0.1, [::1] or localhost (any port and path),
    /// without user info or fragment.
    static bool IsLoopbackRedirect(std::string_view uri);

    http::Response ShowSignIn(const http::RequestContext& context) const;
    http::Response SignIn(const http::RequestContext& context) const;
    http::Response Token(const http::RequestContext& context) const;
    http::Response Revoke(const http::RequestContext& context) const;

private:
    http::Response GrantAnswer(const store::TokenGrant& grant) const;

    std::shared_ptr<store::Store> store;
    std::shared_ptr<const AccessTokens> tokens;
};

}  // namespace vantroserver::api
