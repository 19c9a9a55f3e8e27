#include "OAuthRequests.h"

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <boost/url/encode.hpp>
#include <boost/url/parse.hpp>
#include <boost/url/rfc/unreserved_chars.hpp>
#include <boost/url/url.hpp>

#include <chrono>

namespace vantroauth {

namespace {

constexpr std::chrono::milliseconds kTokenRequestTimeout{30'000};

vantrocommon::http::Request FormPost(
    const std::string& url, const std::vector<std::pair<std::string, std::string>>& fields) {
    vantrocommon::http::Request request;
    request.method = "POST";
    request.url = url;
    request.headers = {{"Content-Type", "application/x-www-form-urlencoded"},
                       {"Accept", "application/json"}};
    request.body = OAuthRequests::FormEncode(fields);
    request.timeout = kTokenRequestTimeout;
    return request;
}

}  // namespace

std::optional<std::string> OAuthRequests::RedirectPath(const std::string& redirectUri) {
    const auto parsed = boost::urls::parse_absolute_uri(redirectUri);
    if (!parsed || parsed->scheme_id() != boost::urls::scheme::http) {
        return std::nullopt;
    }
    std::string path(parsed->encoded_path());
    return path.empty() ? std::string("/") : path;
}

std::string OAuthRequests::LoopbackRedirectUri(const std::string& path, unsigned short port) {
    return "http://127.0.0.1:" + std::to_string(port) + path;
}

std::string OAuthRequests::AuthorizeUrl(const std::string& apiBase, const std::string& clientId,
                                        const std::string& redirectUri,
                                        const std::string& challenge, const std::string& state) {
    return apiBase + "/oauth/authorize?" +
           FormEncode({{"response_type", "code"},
                       {"client_id", clientId},
                       {"redirect_uri", redirectUri},
                       {"code_challenge", challenge},
                       {"code_challenge_method", "S256"},
                       {"state", state}});
}

vantrocommon::http::Request OAuthRequests::Exchange(const std::string& apiBase,
                                                    const std::string& clientId,
                                                    const std::string& code,
                                                    const std::string& verifier,
                                                    const std::string& redirectUri) {
    return FormPost(apiBase + "/oauth/token", {{"grant_type", "authorization_code"},
                                               {"code", code},
                                               {"redirect_uri", redirectUri},
                                               {"client_id", clientId},
                                               {"code_verifier", verifier}});
}

vantrocommon::http::Request OAuthRequests::Refresh(const std::string& apiBase,
                                                   const std::string& clientId,
                                                   const std::string& refreshToken) {
    return FormPost(apiBase + "/oauth/token", {{"grant_type", "refresh_token"},
                                               {"refresh_token", refreshToken},
                                               {"client_id", clientId}});
}

vantrocommon::http::Request OAuthRequests::Revoke(const std::string& apiBase,
                                                  const std::string& refreshToken) {
    return FormPost(apiBase + "/oauth/revoke", {{"token", refreshToken}});
}

std::string OAuthRequests::FormEncode(
    const std::vector<std::pair<std::string, std::string>>& fields) {
    std::string out;
    for (const auto& [name, value] : fields) {
        if (!out.empty()) {
            out += '&';
        }
        out += boost::urls::encode(name, boost::urls::unreserved_chars);
        out += '=';
        out += boost::urls::encode(value, boost::urls::unreserved_chars);
    }
    return out;
}

std::string OAuthRequests::ErrorOf(const vantrocommon::http::Reply& reply) {
    boost::system::error_code error;
    const auto body = boost::json::parse(reply.body, error);
    if (error || !body.is_object()) {
        return {};
    }
    const auto* code = body.as_object().if_contains("error");
    return code && code->is_string() ? std::string(code->as_string()) : std::string();
}

}  // namespace vantroauth
