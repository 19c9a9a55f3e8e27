#include "api/OAuthEndpoints.h"

#include <boost/beast/http/field.hpp>
#include <boost/url/parse.hpp>
#include <boost/url/url.hpp>
#include <variant>

#include "api/SignInPage.h"
#include "http/FormFields.h"
#include "security/Pkce.h"

namespace vantroserver::api {

namespace {

using boost::beast::http::status;
using boost::beast::http::verb;
using http::FormFields;
using http::Response;

// Bounds on what the form carries back, so a page cannot be made arbitrarily large.
constexpr std::size_t kMaxStateLength = 1024;
constexpr std::size_t kMaxRedirectLength = 2048;

/// A valid authorize request, as carried in the form's hidden fields.
struct AuthorizeRequest {
    std::string clientId;
    std::string redirectUri;
    std::string codeChallenge;
    std::optional<std::string> state;

    SignInPage::Fields Hidden() const {
        SignInPage::Fields fields{{"response_type", "code"},
                                  {"client_id", clientId},
                                  {"redirect_uri", redirectUri},
                                  {"code_challenge", codeChallenge},
                                  {"code_challenge_method", "S256"}};
        if (state) {
            fields.emplace_back("state", *state);
        }
        return fields;
    }
};

/// The client or redirect cannot be trusted: show a page, never redirect.
struct PageError {
    std::string message;
};

/// The redirect is trusted but the request is wrong: tell the client through the redirect.
struct RedirectError {
    std::string redirectUri;
    std::string error;
    std::string description;
    std::optional<std::string> state;
};

using AuthorizeCheck = std::variant<AuthorizeRequest, PageError, RedirectError>;

std::string Value(const FormFields::Fields& fields, std::string_view name) {
    const auto value = FormFields::Find(fields, name);
    return value ? std::string(*value) : std::string{};
}

AuthorizeCheck CheckAuthorize(const FormFields::Fields& fields, store::Store& store) {
    const std::string clientId = Value(fields, "client_id");
    const std::string redirectUri = Value(fields, "redirect_uri");
    if (clientId.empty() || !store.Clients().Exists(clientId)) {
        return PageError{"The application asking you to sign in is not registered here."};
    }
    if (redirectUri.size() > kMaxRedirectLength ||
        !OAuthEndpoints::IsLoopbackRedirect(redirectUri)) {
        return PageError{
            "The address to return to after signing in is not a loopback http address."};
    }
    const auto state = FormFields::Find(fields, "state");
    std::optional<std::string> stateValue;
    if (state) {
        stateValue = std::string(state->substr(0, kMaxStateLength));
    }
    auto fail = [&](std::string error, std::string description) -> AuthorizeCheck {
        return RedirectError{redirectUri, std::move(error), std::move(description), stateValue};
    };
    if (Value(fields, "response_type") != "code") {
        return fail("unsupported_response_type", "response_type must be code");
    }
    if (Value(fields, "code_challenge_method") != "S256") {
        return fail("invalid_request", "code_challenge_method must be S256");
    }
    const std::string challenge = Value(fields, "code_challenge");
    if (!security::Pkce::IsWellFormedChallenge(challenge)) {
        return fail("invalid_request", "code_challenge must be an S256 challenge");
    }
    if (state && state->size() > kMaxStateLength) {
        return fail("invalid_request", "state is too long");
    }
    return AuthorizeRequest{clientId, redirectUri, challenge, stateValue};
}

Response RedirectWith(const std::string& redirectUri,
                      const std::vector<std::pair<std::string, std::string>>& params) {
    boost::urls::url url(redirectUri);
    for (const auto& [name, value] : params) {
        url.params().append({name, value});
    }
    return Response::Redirect(url.buffer());
}

Response Redirect(const RedirectError& error) {
    std::vector<std::pair<std::string, std::string>> params{
        {"error", error.error}, {"error_description", error.description}};
    if (error.state) {
        params.emplace_back("state", *error.state);
    }
    return RedirectWith(error.redirectUri, params);
}

Response OAuthError(status code, std::string_view error, std::string_view description) {
    auto response = Response::Error(code, error, description);
    response.Set("Cache-Control", "no-store");
    return response;
}

/// The fields of a form-encoded body; nothing when the body is of another type or malformed.
std::optional<FormFields::Fields> FormBody(const http::RequestContext& context) {
    const auto type = context.Request()[boost::beast::http::field::content_type];
    const std::string_view mediaType = std::string_view(type).substr(0, type.find(';'));
    if (mediaType != "application/x-www-form-urlencoded") {
        return std::nullopt;
    }
    return FormFields::Parse(context.Request().body());
}

std::string_view GrantFailure(store::GrantStatus status) {
    switch (status) {
        case store::GrantStatus::Granted:
            return "";
        case store::GrantStatus::Unknown:
            return "the code or token is unknown or expired";
        case store::GrantStatus::Reused:
            return "the code or token was already used; tokens issued from it are revoked";
        case store::GrantStatus::Revoked:
            return "the token was revoked";
        case store::GrantStatus::Mismatch:
            return "the client or redirect_uri does not match the authorization";
        case store::GrantStatus::BadVerifier:
            return "the code_verifier does not match";
    }
    return "the grant is invalid";
}

}  // namespace

OAuthEndpoints::OAuthEndpoints(std::shared_ptr<store::Store> store,
                               std::shared_ptr<const AccessTokens> tokens)
    : store(std::move(store)), tokens(std::move(tokens)) {}

bool OAuthEndpoints::IsLoopbackRedirect(std::string_view uri) {
    const auto parsed = boost::urls::parse_absolute_uri(uri);
    if (!parsed || parsed->scheme_id() != boost::urls::scheme::http || parsed->has_userinfo() ||
        parsed->has_fragment()) {
        return false;
    }
    switch (parsed->host_type()) {
        case boost::urls::host_type::ipv4:
            return parsed->host_ipv4_address().to_uint() == 0x7F000001u;
        case boost::urls::host_type::ipv6:
            return parsed->host_ipv6_address().is_loopback();
        case boost::urls::host_type::name: {
            std::string host = parsed->host();
            for (char& c : host) {
                c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            }
            return host == "localhost";
        }
        default:
            return false;
    }
}

void OAuthEndpoints::AddRoutes(http::Router& router) {
    auto self = shared_from_this();
    using Access = http::Router::Access;
    router.Add(verb::get, "/oauth/authorize", Access::Public,
               [self](http::RequestContext& context) { return self->ShowSignIn(context); });
    router.Add(verb::post, "/oauth/authorize", Access::Public,
               [self](http::RequestContext& context) { return self->SignIn(context); });
    router.Add(verb::post, "/oauth/token", Access::Public,
               [self](http::RequestContext& context) { return self->Token(context); });
    router.Add(verb::post, "/oauth/revoke", Access::Public,
               [self](http::RequestContext& context) { return self->Revoke(context); });
}

Response OAuthEndpoints::ShowSignIn(const http::RequestContext& context) const {
    FormFields::Fields fields;
    for (const char* name : {"response_type", "client_id", "redirect_uri", "code_challenge",
                             "code_challenge_method", "state"}) {
        if (const auto value = context.Query(name)) {
            fields.emplace_back(name, std::string(*value));
        }
    }
    const auto check = CheckAuthorize(fields, *store);
    if (const auto* error = std::get_if<PageError>(&check)) {
        return Response::Html(status::bad_request, SignInPage::Error(error->message));
    }
    if (const auto* error = std::get_if<RedirectError>(&check)) {
        return Redirect(*error);
    }
    const auto& request = std::get<AuthorizeRequest>(check);
    return Response::Html(status::ok, SignInPage::Form(request.Hidden(), {}, {}));
}

Response OAuthEndpoints::SignIn(const http::RequestContext& context) const {
    const auto fields = FormBody(context);
    if (!fields) {
        return Response::Html(status::bad_request,
                              SignInPage::Error("The sign-in form was not sent as a form."));
    }
    const auto check = CheckAuthorize(*fields, *store);
    if (const auto* error = std::get_if<PageError>(&check)) {
        return Response::Html(status::bad_request, SignInPage::Error(error->message));
    }
    if (const auto* error = std::get_if<RedirectError>(&check)) {
        return Redirect(*error);
    }
    const auto& request = std::get<AuthorizeRequest>(check);
    const std::string username = Value(*fields, "username");
    const std::string password = Value(*fields, "password");
    const auto user = username.empty() || password.empty()
                          ? std::nullopt
                          : store->Users().Authenticate(username, password);
    if (!user) {
        return Response::Html(status::ok, SignInPage::Form(request.Hidden(), username,
                                                           "Wrong username or password."));
    }
    const std::string code = store->Tokens().IssueCode(
        {request.clientId, user->id, request.redirectUri, request.codeChallenge});
    std::vector<std::pair<std::string, std::string>> params{{"code", code}};
    if (request.state) {
        params.emplace_back("state", *request.state);
    }
    return RedirectWith(request.redirectUri, params);
}

Response OAuthEndpoints::Token(const http::RequestContext& context) const {
    const auto fields = FormBody(context);
    if (!fields) {
        return OAuthError(status::bad_request, "invalid_request",
                          "the body must be application/x-www-form-urlencoded");
    }
    const std::string clientId = Value(*fields, "client_id");
    if (clientId.empty() || !store->Clients().Exists(clientId)) {
        return OAuthError(status::unauthorized, "invalid_client", "unknown client_id");
    }
    const std::string grantType = Value(*fields, "grant_type");
    if (grantType == "authorization_code") {
        const std::string code = Value(*fields, "code");
        const std::string redirectUri = Value(*fields, "redirect_uri");
        const std::string verifier = Value(*fields, "code_verifier");
        if (code.empty() || redirectUri.empty() || verifier.empty()) {
            return OAuthError(status::bad_request, "invalid_request",
                              "code, redirect_uri and code_verifier are required");
        }
        return GrantAnswer(store->Tokens().RedeemCode(code, clientId, redirectUri, verifier));
    }
    if (grantType == "refresh_token") {
        const std::string refreshToken = Value(*fields, "refresh_token");
        if (refreshToken.empty()) {
            return OAuthError(status::bad_request, "invalid_request", "refresh_token is required");
        }
        return GrantAnswer(store->Tokens().RotateRefreshToken(refreshToken, clientId));
    }
    if (grantType.empty()) {
        return OAuthError(status::bad_request, "invalid_request", "grant_type is required");
    }
    return OAuthError(status::bad_request, "unsupported_grant_type",
                      "grant_type must be authorization_code or refresh_token");
}

Response OAuthEndpoints::GrantAnswer(const store::TokenGrant& grant) const {
    if (grant.status != store::GrantStatus::Granted) {
        return OAuthError(status::bad_request, "invalid_grant", GrantFailure(grant.status));
    }
    auto response = Response::Json(
        status::ok, boost::json::object{{"access_token", tokens->Issue(grant.userId, grant.clientId,
                                                                       grant.familyId)},
                                        {"token_type", "Bearer"},
                                        {"expires_in", tokens->Lifetime().count()},
                                        {"refresh_token", grant.refreshToken}});
    response.Set("Cache-Control", "no-store");
    return response;
}

Response OAuthEndpoints::Revoke(const http::RequestContext& context) const {
    const auto fields = FormBody(context);
    if (!fields) {
        return OAuthError(status::bad_request, "invalid_request",
                          "the body must be application/x-www-form-urlencoded");
    }
    const std::string token = Value(*fields, "token");
    if (token.empty()) {
        return OAuthError(status::bad_request, "invalid_request", "token is required");
    }
    // Unknown tokens are answered like known ones, so revoking tells nothing about a token.
    store->Tokens().RevokeRefreshToken(token);
    auto response = Response::Json(status::ok, boost::json::object{});
    response.Set("Cache-Control", "no-store");
    return response;
}

}  // namespace vantroserver::api
