// Issues access tokens (HS256 JWTs with sub, client_id, fam, iat, exp) and checks the bearer
// tokens of API requests: signature, expiry, and that their refresh family was not revoked.
// Owned by the server; const methods, any thread.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "http/RequestContext.h"
#include "security/JwtCodec.h"
#include "store/Store.h"

namespace vantroserver::api {

class AccessTokens {
public:
    AccessTokens(std::shared_ptr<store::Store> store, std::string signingKey,
                 std::chrono::seconds lifetime);

    /// A fresh access token for the user of a granted code or refresh token.
    std::string Issue(std::string_view userId, std::string_view clientId,
                      std::string_view familyId) const;
    std::chrono::seconds Lifetime() const { return lifetime; }

    /// The signed-in user of `token`, or nothing when it is malformed, forged, expired, of a
    /// revoked family, or names a user that no longer exists.
    std::optional<http::RequestContext::Principal> Verify(std::string_view token) const;

private:
    std::int64_t NowSeconds() const;

    std::shared_ptr<store::Store> store;
    security::JwtCodec codec;
    const std::chrono::seconds lifetime;
};

}  // namespace vantroserver::api
