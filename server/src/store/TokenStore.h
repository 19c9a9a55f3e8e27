// Authorization codes and refresh tokens of the sign-in flow. Codes are single-use, live ten
// minutes and are bound to client, redirect URI and PKCE challenge. Refresh tokens are opaque
// and stored only as SHA-256 hashes; each use rotates them, and all tokens descending from one
// code form a family that is revoked as a whole when a used code or a rotated token comes back.
// Part of a Store; any thread.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

namespace vantroserver::store {

class StoreCore;

struct AuthorizationGrant {
    std::string clientId;
    std::string userId;
    std::string redirectUri;
    std::string codeChallenge;  ///< S256.
};

enum class GrantStatus {
    Granted,
    Unknown,     ///< No such code or token (or it expired).
    Reused,      ///< Already used: the family is now revoked.
    Revoked,     ///< Its family was revoked.
    Mismatch,    ///< Wrong client or redirect URI.
    BadVerifier  ///< The PKCE verifier does not match the challenge.
};

/// What redeeming a code or rotating a refresh token gave.
struct TokenGrant {
    GrantStatus status = GrantStatus::Unknown;
    std::string userId;
    std::string clientId;
    std::string familyId;
    std::string refreshToken;  ///< The new refresh token when Granted.
};

class TokenStore {
public:
    static constexpr std::chrono::minutes kCodeLifetime{10};
    static constexpr std::chrono::hours kRefreshTokenLifetime{24 * 30};

    explicit TokenStore(std::shared_ptr<StoreCore> core);

    /// Records the grant and returns a fresh code (only its hash is kept).
    std::string IssueCode(const AuthorizationGrant& grant);

    /// Exchanges a code for a new refresh token family. Any attempt uses the code up; a second
    /// attempt answers Reused and revokes every token issued from it.
    TokenGrant RedeemCode(std::string_view code, std::string_view clientId,
                          std::string_view redirectUri, std::string_view codeVerifier);

    /// Exchanges a live refresh token for the next one of its family. A token that was already
    /// rotated revokes the family (Reused).
    TokenGrant RotateRefreshToken(std::string_view refreshToken, std::string_view clientId);

    /// A new family for `userId` and `clientId` without a code, for sign-in from an admin's
    /// terminal. Throws StoreError(NotFound) for an unknown user.
    TokenGrant IssueFamily(std::string_view userId, std::string_view clientId);

    /// Ends the token's family: none of its refresh tokens refreshes again, while its access
    /// tokens stay valid until they expire. False when the token is unknown.
    bool RevokeRefreshToken(std::string_view refreshToken);

    bool IsFamilyRevoked(std::string_view familyId) const;

    /// Deletes expired codes and tokens.
    void PruneExpired();

private:
    std::shared_ptr<StoreCore> core;
};

}  // namespace vantroserver::store
