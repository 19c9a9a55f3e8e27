// The session of a browser signed in through `/signin`: a cookie naming the user and when it
// expires, signed with a key derived from the server's signing key, so it cannot be forged or
// stretched. Nothing is stored on the server. Built once by the web endpoints; const methods,
// any thread.
//
//   WebSessionCookie sessions(signingKey, [store] { return store->Now(); });
//   response.Set("Set-Cookie", sessions.SetCookieHeader(userId, tls));
//   auto userId = sessions.UserOf(request[field::cookie]);
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "store/Timestamp.h"

namespace vantroserver::web {

class WebSessionCookie {
public:
    static constexpr std::string_view kName = "vantro_session";
    static constexpr std::chrono::seconds kLifetime{12 * 3600};

    WebSessionCookie(std::string_view signingKey, std::function<store::Timestamp()> clock);

    /// A signed value for `userId`, expiring kLifetime from now.
    std::string Issue(std::string_view userId) const;
    /// The whole `Set-Cookie` value: HttpOnly, SameSite=Lax, Path=/, Max-Age; Secure with TLS.
    std::string SetCookieHeader(std::string_view userId, bool secure) const;

    /// The user of a `Cookie` request header's session, or nothing when there is none, it was
    /// not signed by us or it expired.
    std::optional<std::string> UserOf(std::string_view cookieHeader) const;

private:
    std::string Sign(std::string_view payload) const;

    std::string key;
    std::function<store::Timestamp()> clock;
};

}  // namespace vantroserver::web
