#include "api/AccessTokens.h"

namespace vantroserver::api {

AccessTokens::AccessTokens(std::shared_ptr<store::Store> store, std::string signingKey,
                           std::chrono::seconds lifetime)
    : store(std::move(store)), codec(std::move(signingKey)), lifetime(lifetime) {}

std::int64_t AccessTokens::NowSeconds() const {
    return std::chrono::duration_cast<std::chrono::seconds>(store->Now().time_since_epoch())
        .count();
}

std::string AccessTokens::Issue(std::string_view userId, std::string_view clientId,
                                std::string_view familyId) const {
    security::AccessTokenClaims claims;
    claims.subject = userId;
    claims.clientId = clientId;
    claims.familyId = familyId;
    claims.issuedAt = NowSeconds();
    claims.expiresAt = claims.issuedAt + lifetime.count();
    return codec.Sign(claims);
}

std::optional<http::RequestContext::Principal> AccessTokens::Verify(std::string_view token) const {
    const auto verification = codec.Verify(token, NowSeconds());
    if (verification.status != security::JwtStatus::Valid) {
        return std::nullopt;
    }
    const auto& claims = verification.claims;
    if (!claims.familyId.empty() && store->Tokens().IsFamilyRevoked(claims.familyId)) {
        return std::nullopt;
    }
    if (!store->Users().Find(claims.subject)) {
        return std::nullopt;
    }
    return http::RequestContext::Principal{claims.subject, claims.clientId, std::string(token)};
}

}  // namespace vantroserver::api
