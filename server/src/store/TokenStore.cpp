#include "store/TokenStore.h"

#include "security/Digest.h"
#include "security/Encoding.h"
#include "security/Pkce.h"
#include "security/Random.h"
#include "store/StoreCore.h"
#include "store/StoreError.h"
#include "store/Transaction.h"

namespace vantroserver::store {

namespace {

// Codes and refresh tokens are kept only as digests: a copy of the database hands out nothing
// that can be exchanged.
std::string Digest(std::string_view secret) {
    return security::HexEncode(security::Sha256(secret));
}

std::int64_t Milliseconds(std::chrono::milliseconds duration) {
    return duration.count();
}

void RevokeFamily(Connection& connection, std::string_view familyId) {
    connection.Prepare("UPDATE token_families SET revoked = 1 WHERE id = ?")
        .Bind(1, familyId)
        .Run();
}

std::string InsertRefreshToken(const StoreCore& core, Connection& connection,
                               std::string_view familyId) {
    std::string token = security::NewOpaqueToken();
    const auto now = MillisecondsOf(core.Now());
    connection
        .Prepare(
            "INSERT INTO refresh_tokens (token_hash, family_id, expires_at, rotated, "
            "created_at) VALUES (?, ?, ?, 0, ?)")
        .Bind(1, Digest(token))
        .Bind(2, familyId)
        .Bind(3, now + Milliseconds(TokenStore::kRefreshTokenLifetime))
        .Bind(4, now)
        .Run();
    return token;
}

// Records the family of `grant` (its id, user and client) and its first refresh token, which
// goes into `grant`.
void StartFamily(const StoreCore& core, Connection& connection, TokenGrant& grant) {
    connection
        .Prepare(
            "INSERT INTO token_families (id, user_id, client_id, revoked, created_at) "
            "VALUES (?, ?, ?, 0, ?)")
        .Bind(1, grant.familyId)
        .Bind(2, grant.userId)
        .Bind(3, grant.clientId)
        .Bind(4, MillisecondsOf(core.Now()))
        .Run();
    grant.refreshToken = InsertRefreshToken(core, connection, grant.familyId);
}

}  // namespace

TokenStore::TokenStore(std::shared_ptr<StoreCore> core) : core(std::move(core)) {}

std::string TokenStore::IssueCode(const AuthorizationGrant& grant) {
    std::string code = security::NewOpaqueToken();
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    if (!security::IsWellFormedId(grant.userId) ||
        !StoreCore::RowExists(*lease, "users", grant.userId)) {
        throw StoreError(StoreError::Kind::NotFound, "no user " + grant.userId);
    }
    lease
        ->Prepare(
            "INSERT INTO authorization_codes (code_hash, family_id, client_id, user_id, "
            "redirect_uri, code_challenge, expires_at, used) "
            "VALUES (?, ?, ?, ?, ?, ?, ?, 0)")
        .Bind(1, Digest(code))
        .Bind(2, security::NewId())
        .Bind(3, grant.clientId)
        .Bind(4, grant.userId)
        .Bind(5, grant.redirectUri)
        .Bind(6, grant.codeChallenge)
        .Bind(7, MillisecondsOf(core->Now()) + Milliseconds(kCodeLifetime))
        .Run();
    transaction.Commit();
    return code;
}

TokenGrant TokenStore::RedeemCode(std::string_view code, std::string_view clientId,
                                  std::string_view redirectUri, std::string_view codeVerifier) {
    TokenGrant result;
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    const std::string hash = Digest(code);
    std::string challenge, boundRedirect;
    std::int64_t expiresAt = 0;
    bool used = false;
    {
        Statement row = lease->Prepare(
            "SELECT family_id, client_id, user_id, redirect_uri, code_challenge, expires_at, "
            "used FROM authorization_codes WHERE code_hash = ?");
        row.Bind(1, hash);
        if (!row.Step()) {
            return result;
        }
        result.familyId = row.ColumnText(0);
        result.clientId = row.ColumnText(1);
        result.userId = row.ColumnText(2);
        boundRedirect = row.ColumnText(3);
        challenge = row.ColumnText(4);
        expiresAt = row.ColumnInt(5);
        used = row.ColumnInt(6) != 0;
    }
    if (used) {
        // A code coming back means it leaked: everything issued from it stops working.
        RevokeFamily(*lease, result.familyId);
        transaction.Commit();
        result.status = GrantStatus::Reused;
        return result;
    }
    // Any attempt uses the code up, so a wrong verifier cannot be followed by guesses.
    lease->Prepare("UPDATE authorization_codes SET used = 1 WHERE code_hash = ?")
        .Bind(1, hash)
        .Run();
    if (MillisecondsOf(core->Now()) >= expiresAt) {
        result.status = GrantStatus::Unknown;
    } else if (result.clientId != clientId || boundRedirect != redirectUri) {
        result.status = GrantStatus::Mismatch;
    } else if (!security::Pkce::VerifyS256(codeVerifier, challenge)) {
        result.status = GrantStatus::BadVerifier;
    } else {
        StartFamily(*core, *lease, result);
        result.status = GrantStatus::Granted;
    }
    transaction.Commit();
    return result;
}

TokenGrant TokenStore::RotateRefreshToken(std::string_view refreshToken,
                                          std::string_view clientId) {
    TokenGrant result;
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    const std::string hash = Digest(refreshToken);
    std::int64_t expiresAt = 0;
    bool rotated = false;
    bool revoked = false;
    {
        Statement row = lease->Prepare(
            "SELECT t.family_id, f.client_id, f.user_id, t.expires_at, t.rotated, f.revoked "
            "FROM refresh_tokens t JOIN token_families f ON f.id = t.family_id "
            "WHERE t.token_hash = ?");
        row.Bind(1, hash);
        if (!row.Step()) {
            return result;
        }
        result.familyId = row.ColumnText(0);
        result.clientId = row.ColumnText(1);
        result.userId = row.ColumnText(2);
        expiresAt = row.ColumnInt(3);
        rotated = row.ColumnInt(4) != 0;
        revoked = row.ColumnInt(5) != 0;
    }
    if (MillisecondsOf(core->Now()) >= expiresAt) {
        result.status = GrantStatus::Unknown;
    } else if (revoked) {
        result.status = GrantStatus::Revoked;
    } else if (result.clientId != clientId) {
        result.status = GrantStatus::Mismatch;
    } else if (rotated) {
        // An old token replayed: either the client or a thief holds a stale copy; stop both.
        RevokeFamily(*lease, result.familyId);
        result.status = GrantStatus::Reused;
    } else {
        lease->Prepare("UPDATE refresh_tokens SET rotated = 1 WHERE token_hash = ?")
            .Bind(1, hash)
            .Run();
        result.refreshToken = InsertRefreshToken(*core, *lease, result.familyId);
        result.status = GrantStatus::Granted;
    }
    transaction.Commit();
    return result;
}

TokenGrant TokenStore::IssueFamily(std::string_view userId, std::string_view clientId) {
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    if (!security::IsWellFormedId(userId) || !StoreCore::RowExists(*lease, "users", userId)) {
        throw StoreError(StoreError::Kind::NotFound, "no user " + std::string(userId));
    }
    TokenGrant result;
    result.userId = userId;
    result.clientId = clientId;
    result.familyId = security::NewId();
    StartFamily(*core, *lease, result);
    result.status = GrantStatus::Granted;
    transaction.Commit();
    return result;
}

bool TokenStore::RevokeRefreshToken(std::string_view refreshToken) {
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    std::string familyId;
    {
        Statement row = lease->Prepare("SELECT family_id FROM refresh_tokens WHERE token_hash = ?");
        row.Bind(1, Digest(refreshToken));
        if (!row.Step()) {
            return false;
        }
        familyId = row.ColumnText(0);
    }
    // A sign-out ends the family's refreshing, but the access tokens already handed out live out
    // their hour: work the user started before signing out (an upload under way) may finish.
    // A replayed token is another matter: that revokes the whole family at once.
    lease->Prepare("DELETE FROM refresh_tokens WHERE family_id = ?").Bind(1, familyId).Run();
    transaction.Commit();
    return true;
}

bool TokenStore::IsFamilyRevoked(std::string_view familyId) const {
    auto lease = core->Acquire();
    Statement row = lease->Prepare("SELECT revoked FROM token_families WHERE id = ?");
    row.Bind(1, familyId);
    // A family that is not there (pruned, or never made) vouches for nothing.
    return !row.Step() || row.ColumnInt(0) != 0;
}

void TokenStore::PruneExpired() {
    const auto now = MillisecondsOf(core->Now());
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    lease->Prepare("DELETE FROM authorization_codes WHERE expires_at <= ?").Bind(1, now).Run();
    lease->Prepare("DELETE FROM refresh_tokens WHERE expires_at <= ?").Bind(1, now).Run();
    // A family outlives its last token by an access token's life at most; a day is plenty.
    lease
        ->Prepare(
            "DELETE FROM token_families WHERE created_at <= ? AND NOT EXISTS "
            "(SELECT 1 FROM refresh_tokens t WHERE t.family_id = token_families.id)")
        .Bind(1, now - Milliseconds(std::chrono::hours(24)))
        .Run();
    transaction.Commit();
}

}  // namespace vantroserver::store
