#include "StoreFixture.h"
#include "security/Pkce.h"

namespace storetest {
namespace {

using vantroserver::security::Pkce;
using vantroserver::store::AuthorizationGrant;
using vantroserver::store::GrantStatus;
using vantroserver::store::TokenStore;

constexpr const char* kClient = "vantrokelui-desktop";
constexpr const char* kRedirect = "http://127.0.0.1:53100/callback";
const std::string kVerifier = "dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk";

class TokenStoreTest : public StoreFixture {
protected:
    TokenStoreTest() { user = AddUser("ann"); }

    std::string IssueCode() {
        return store->Tokens().IssueCode(
            AuthorizationGrant{kClient, user, kRedirect, Pkce::ChallengeS256(kVerifier)});
    }

    vantroserver::store::TokenGrant Redeem(const std::string& code) {
        return store->Tokens().RedeemCode(code, kClient, kRedirect, kVerifier);
    }

    std::string user;
};

TEST_F(TokenStoreTest, CodeRedeemsOnceForARefreshToken) {
    const auto grant = Redeem(IssueCode());
    ASSERT_EQ(grant.status, GrantStatus::Granted);
    EXPECT_EQ(grant.userId, user);
    EXPECT_EQ(grant.clientId, kClient);
    EXPECT_FALSE(grant.refreshToken.empty());
    EXPECT_FALSE(grant.familyId.empty());
    EXPECT_FALSE(store->Tokens().IsFamilyRevoked(grant.familyId));
}

TEST_F(TokenStoreTest, ReusedCodeIsRefusedAndRevokesWhatItGave) {
    const std::string code = IssueCode();
    const auto first = Redeem(code);
    ASSERT_EQ(first.status, GrantStatus::Granted);
    const auto second = Redeem(code);
    EXPECT_EQ(second.status, GrantStatus::Reused);
    EXPECT_TRUE(second.refreshToken.empty());
    EXPECT_TRUE(store->Tokens().IsFamilyRevoked(first.familyId));
    EXPECT_EQ(store->Tokens().RotateRefreshToken(first.refreshToken, kClient).status,
              GrantStatus::Revoked);
}

TEST_F(TokenStoreTest, WrongVerifierIsRefusedAndUsesTheCodeUp) {
    const std::string code = IssueCode();
    const std::string wrong = "dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXK";
    EXPECT_EQ(store->Tokens().RedeemCode(code, kClient, kRedirect, wrong).status,
              GrantStatus::BadVerifier);
    EXPECT_EQ(Redeem(code).status, GrantStatus::Reused);
}

TEST_F(TokenStoreTest, CodeIsBoundToItsClientAndRedirect) {
    EXPECT_EQ(store->Tokens().RedeemCode(IssueCode(), "other-client", kRedirect, kVerifier).status,
              GrantStatus::Mismatch);
    EXPECT_EQ(store->Tokens()
                  .RedeemCode(IssueCode(), kClient, "http://127.0.0.1:53101/callback", kVerifier)
                  .status,
              GrantStatus::Mismatch);
}

TEST_F(TokenStoreTest, CodeExpiresAfterTenMinutes) {
    const std::string fresh = IssueCode();
    const std::string stale = IssueCode();
    Advance(TokenStore::kCodeLifetime - std::chrono::milliseconds(1));
    EXPECT_EQ(Redeem(fresh).status, GrantStatus::Granted);
    Advance(std::chrono::milliseconds(1));
    EXPECT_EQ(Redeem(stale).status, GrantStatus::Unknown);
}

TEST_F(TokenStoreTest, UnknownCodeIsRefused) {
    EXPECT_EQ(Redeem("made-up").status, GrantStatus::Unknown);
    EXPECT_EQ(Redeem("").status, GrantStatus::Unknown);
}

TEST_F(TokenStoreTest, RefreshTokenRotates) {
    const auto first = Redeem(IssueCode());
    const auto second = store->Tokens().RotateRefreshToken(first.refreshToken, kClient);
    ASSERT_EQ(second.status, GrantStatus::Granted);
    EXPECT_NE(second.refreshToken, first.refreshToken);
    EXPECT_EQ(second.familyId, first.familyId);
    EXPECT_EQ(second.userId, user);
    const auto third = store->Tokens().RotateRefreshToken(second.refreshToken, kClient);
    EXPECT_EQ(third.status, GrantStatus::Granted);
}

TEST_F(TokenStoreTest, RotatedTokenComingBackRevokesTheFamily) {
    const auto first = Redeem(IssueCode());
    const auto second = store->Tokens().RotateRefreshToken(first.refreshToken, kClient);
    ASSERT_EQ(second.status, GrantStatus::Granted);
    EXPECT_EQ(store->Tokens().RotateRefreshToken(first.refreshToken, kClient).status,
              GrantStatus::Reused);
    EXPECT_TRUE(store->Tokens().IsFamilyRevoked(first.familyId));
    EXPECT_EQ(store->Tokens().RotateRefreshToken(second.refreshToken, kClient).status,
              GrantStatus::Revoked);
}

TEST_F(TokenStoreTest, RefreshTokenIsBoundToItsClient) {
    const auto first = Redeem(IssueCode());
    EXPECT_EQ(store->Tokens().RotateRefreshToken(first.refreshToken, "other").status,
              GrantStatus::Mismatch);
    EXPECT_EQ(store->Tokens().RotateRefreshToken(first.refreshToken, kClient).status,
              GrantStatus::Granted);
}

TEST_F(TokenStoreTest, RefreshTokenExpires) {
    const auto first = Redeem(IssueCode());
    Advance(TokenStore::kRefreshTokenLifetime);
    EXPECT_EQ(store->Tokens().RotateRefreshToken(first.refreshToken, kClient).status,
              GrantStatus::Unknown);
}

TEST_F(TokenStoreTest, RevokingATokenEndsItsFamilysRefreshingButNotItsAccessTokens) {
    const auto first = Redeem(IssueCode());
    const auto second = store->Tokens().RotateRefreshToken(first.refreshToken, kClient);
    EXPECT_TRUE(store->Tokens().RevokeRefreshToken(second.refreshToken));
    EXPECT_FALSE(store->Tokens().IsFamilyRevoked(first.familyId));
    EXPECT_EQ(store->Tokens().RotateRefreshToken(second.refreshToken, kClient).status,
              GrantStatus::Unknown);
    // The rotated one is gone too: replaying it neither refreshes nor revokes.
    EXPECT_EQ(store->Tokens().RotateRefreshToken(first.refreshToken, kClient).status,
              GrantStatus::Unknown);
    EXPECT_FALSE(store->Tokens().IsFamilyRevoked(first.familyId));
    EXPECT_FALSE(store->Tokens().RevokeRefreshToken("unknown"));
}

TEST_F(TokenStoreTest, OtherFamiliesAreUntouchedByARevocation) {
    const auto mine = Redeem(IssueCode());
    const auto other = Redeem(IssueCode());
    store->Tokens().RevokeRefreshToken(mine.refreshToken);
    EXPECT_FALSE(store->Tokens().IsFamilyRevoked(other.familyId));
    EXPECT_EQ(store->Tokens().RotateRefreshToken(other.refreshToken, kClient).status,
              GrantStatus::Granted);
}

TEST_F(TokenStoreTest, SecretsAreStoredOnlyAsDigests) {
    const std::string code = IssueCode();
    const auto grant = Redeem(code);
    auto database = vantroserver::store::Database::Open(directory.Path() / "vantro.db", false);
    auto lease = database->Acquire();
    auto rows = lease->Prepare(
        "SELECT code_hash FROM authorization_codes UNION ALL SELECT token_hash FROM "
        "refresh_tokens");
    int count = 0;
    while (rows.Step()) {
        const std::string stored = rows.ColumnText(0);
        EXPECT_EQ(stored.size(), 64u);
        EXPECT_NE(stored, code);
        EXPECT_NE(stored, grant.refreshToken);
        ++count;
    }
    EXPECT_EQ(count, 2);
}

TEST_F(TokenStoreTest, PruningDropsExpiredCodesAndTokensOnly) {
    IssueCode();
    const auto stale = Redeem(IssueCode());
    Advance(TokenStore::kRefreshTokenLifetime);
    const std::string liveCode = IssueCode();
    const auto fresh = Redeem(IssueCode());
    auto database = vantroserver::store::Database::Open(directory.Path() / "vantro.db", false);
    const auto count = [&](const std::string& table) {
        auto lease = database->Acquire();
        auto statement = lease->Prepare("SELECT COUNT(*) FROM " + table);
        statement.Step();
        return statement.ColumnInt(0);
    };
    ASSERT_EQ(count("authorization_codes"), 4);
    ASSERT_EQ(count("refresh_tokens"), 2);

    store->Tokens().PruneExpired();

    EXPECT_EQ(count("authorization_codes"), 2);
    EXPECT_EQ(count("refresh_tokens"), 1);
    EXPECT_EQ(store->Tokens().RotateRefreshToken(stale.refreshToken, kClient).status,
              GrantStatus::Unknown);
    EXPECT_EQ(store->Tokens().RotateRefreshToken(fresh.refreshToken, kClient).status,
              GrantStatus::Granted);
    EXPECT_EQ(Redeem(liveCode).status, GrantStatus::Granted);
}

}  // namespace
}  // namespace storetest
