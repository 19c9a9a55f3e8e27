// The messages of the sign-in protocol as this client writes them: the authorize URL the
// browser opens, the loopback redirect URI, and the form-encoded requests to /oauth/token
// (code exchange, refresh) and /oauth/revoke. Stateless; any thread. Requests carry secrets in
// their bodies only, never in a URL, and are never logged.
//
//   const auto redirect = OAuthRequests::LoopbackRedirectUri("/callback", listener->Port());
//   opener(OAuthRequests::AuthorizeUrl(apiBase, clientId, redirect, pkce.challenge, pkce.state));
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <vantrocommon/http/Reply.h>
#include <vantrocommon/http/Request.h>

namespace vantroauth {

class OAuthRequests {
public:
    /// The encoded path of a configured redirect URI ("/" when it has none); nothing when
    /// `redirectUri` is not an absolute http URI.
    static std::optional<std::string> RedirectPath(const std::string& redirectUri);
    /// http://127.0.0.1:<port><path>.
    static std::string LoopbackRedirectUri(const std::string& path, unsigned short port);

    /// <apiBase>/oauth/authorize?response_type=code&client_id=..&redirect_uri=..&
    /// code_challenge=..&code_challenge_method=S256&state=.., every value percent-encoded.
    static std::string AuthorizeUrl(const std::string& apiBase, const std::string& clientId,
                                    const std::string& redirectUri, const std::string& challenge,
                                    const std::string& state);

    static vantrocommon::http::Request Exchange(const std::string& apiBase,
                                                const std::string& clientId,
                                                const std::string& code,
                                                const std::string& verifier,
                                                const std::string& redirectUri);
    static vantrocommon::http::Request Refresh(const std::string& apiBase,
                                               const std::string& clientId,
                                               const std::string& refreshToken);
    static vantrocommon::http::Request Revoke(const std::string& apiBase,
                                              const std::string& refreshToken);

    /// application/x-www-form-urlencoded: each name and value percent-encoded (all but the
    /// unreserved characters), joined by '=' and '&'.
    static std::string FormEncode(const std::vector<std::pair<std::string, std::string>>& fields);

    /// The "error" member of an OAuth error answer, or empty.
    static std::string ErrorOf(const vantrocommon::http::Reply& reply);
};

}  // namespace vantroauth
