#include <gtest/gtest.h>

#include <set>

#include "security/AccessTokenClaims.h"
#include "security/Digest.h"
#include "security/Encoding.h"
#include "security/JwtCodec.h"
#include "security/PasswordHasher.h"
#include "security/Pkce.h"
#include "security/Random.h"

namespace vantroserver::security {
namespace {

const std::string kKey(32, 'k');

TEST(Pkce, MatchesTheAppendixBExampleVector) {
    // The example pair published with the S256 method.
    const std::string verifier = "dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk";
    const std::string challenge = "E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM";
    EXPECT_EQ(Pkce::ChallengeS256(verifier), challenge);
    EXPECT_TRUE(Pkce::VerifyS256(verifier, challenge));
    EXPECT_TRUE(Pkce::IsWellFormedChallenge(challenge));
}

TEST(Pkce, RefusesAnotherVerifierAndMalformedOnes) {
    const std::string challenge = "E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM";
    EXPECT_FALSE(Pkce::VerifyS256("dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXK", challenge));
    EXPECT_FALSE(Pkce::VerifyS256("short", Pkce::ChallengeS256("short")));
    const std::string withSpace = "dBjftJeZ4CVP mB92K27uhbUJU1p1r_wW1gFWFOEjXk";
    EXPECT_FALSE(Pkce::VerifyS256(withSpace, Pkce::ChallengeS256(withSpace)));
    EXPECT_FALSE(
        Pkce::VerifyS256(std::string(129, 'a'), Pkce::ChallengeS256(std::string(129, 'a'))));
    EXPECT_TRUE(
        Pkce::VerifyS256(std::string(128, 'a'), Pkce::ChallengeS256(std::string(128, 'a'))));
    EXPECT_FALSE(Pkce::IsWellFormedChallenge("E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw+cM"));
    EXPECT_FALSE(Pkce::IsWellFormedChallenge(""));
}

TEST(Encoding, Base64UrlRoundTripsEveryLengthWithoutPadding) {
    EXPECT_EQ(Base64UrlEncode(""), "");
    EXPECT_EQ(Base64UrlEncode("f"), "Zg");
    EXPECT_EQ(Base64UrlEncode("fo"), "Zm8");
    EXPECT_EQ(Base64UrlEncode("foo"), "Zm9v");
    EXPECT_EQ(Base64UrlEncode("\xfb\xff"), "-_8");
    for (std::size_t length = 0; length < 40; ++length) {
        const std::string bytes = RandomBytes(length);
        const auto decoded = Base64UrlDecode(Base64UrlEncode(bytes));
        ASSERT_TRUE(decoded.has_value());
        EXPECT_EQ(*decoded, bytes);
    }
}

TEST(Encoding, Base64UrlDecodeRefusesForeignCharactersAndImpossibleLengths) {
    EXPECT_FALSE(Base64UrlDecode("Zm9v+").has_value());
    EXPECT_FALSE(Base64UrlDecode("Zm/v").has_value());
    EXPECT_FALSE(Base64UrlDecode("Z").has_value());
    EXPECT_FALSE(Base64UrlDecode("Zh").has_value());  // Leftover bits not zero.
    EXPECT_EQ(Base64UrlDecode("Zg==").value_or("?"), "f");
}

TEST(Digest, Sha256AndHmacMatchKnownVectors) {
    EXPECT_EQ(HexEncode(Sha256("abc")),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    // HMAC-SHA256 test case 2 of the published HMAC vectors.
    EXPECT_EQ(HexEncode(HmacSha256("Jefe", "what do ya want for nothing?")),
              "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843");
    EXPECT_TRUE(ConstantTimeEquals("same", "same"));
    EXPECT_FALSE(ConstantTimeEquals("same", "sane"));
    EXPECT_FALSE(ConstantTimeEquals("same", "samey"));
}

TEST(Random, IdsAreWellFormedAndDistinct) {
    std::set<std::string> ids;
    for (int i = 0; i < 1000; ++i) {
        const std::string id = NewId();
        EXPECT_TRUE(IsWellFormedId(id)) << id;
        ids.insert(id);
    }
    EXPECT_EQ(ids.size(), 1000u);
    EXPECT_FALSE(IsWellFormedId("0123456789abcdef0123456789abcdef0123"));
    EXPECT_FALSE(IsWellFormedId("01234567-89AB-cdef-0123-456789abcdef"));
    EXPECT_FALSE(IsWellFormedId("01234567-89ab-cdef-0123-456789abcde"));
    EXPECT_FALSE(IsWellFormedId("01234567-89ab-cdef-0123-456789abcdeg"));
    EXPECT_TRUE(IsWellFormedId("01234567-89ab-cdef-0123-456789abcdef"));
}

TEST(PasswordHasher, VerifiesTheRightPasswordOnly) {
    const PasswordHasher hasher(1000);
    const std::string stored = hasher.Hash("correct horse");
    EXPECT_EQ(stored.rfind("pbkdf2-sha256$1000$", 0), 0u) << stored;
    EXPECT_TRUE(PasswordHasher::Verify("correct horse", stored));
    EXPECT_FALSE(PasswordHasher::Verify("correct horsE", stored));
    EXPECT_FALSE(PasswordHasher::Verify("", stored));
}

TEST(PasswordHasher, SaltsEachHash) {
    const PasswordHasher hasher(1000);
    EXPECT_NE(hasher.Hash("same"), hasher.Hash("same"));
}

TEST(PasswordHasher, DefaultCostIsTheSlowOne) {
    EXPECT_EQ(PasswordHasher().Iterations(), PasswordHasher::kDefaultIterations);
    EXPECT_GE(PasswordHasher::kDefaultIterations, 600'000u);
}

TEST(PasswordHasher, RefusesMalformedStoredForms) {
    const std::string stored = PasswordHasher(10).Hash("pw");
    EXPECT_FALSE(PasswordHasher::Verify("pw", ""));
    EXPECT_FALSE(PasswordHasher::Verify("pw", "pbkdf2-sha256$10$abc"));
    EXPECT_FALSE(PasswordHasher::Verify("pw", "md5$10$abc$def"));
    EXPECT_FALSE(PasswordHasher::Verify("pw", "pbkdf2-sha256$0$" + stored.substr(19)));
    EXPECT_FALSE(PasswordHasher::Verify("pw", "pbkdf2-sha256$99999999999$abc$def"));
    EXPECT_FALSE(PasswordHasher::Verify("pw", stored + "x"));
}

AccessTokenClaims SampleClaims() {
    return AccessTokenClaims{"user-1", "vantrokelui-desktop", "family-1", 1000, 4600};
}

TEST(JwtCodec, SignedTokenVerifiesWithItsClaims) {
    const JwtCodec codec(kKey);
    const std::string token = codec.Sign(SampleClaims());
    const auto result = codec.Verify(token, 2000);
    ASSERT_EQ(result.status, JwtStatus::Valid);
    EXPECT_EQ(result.claims.subject, "user-1");
    EXPECT_EQ(result.claims.clientId, "vantrokelui-desktop");
    EXPECT_EQ(result.claims.familyId, "family-1");
    EXPECT_EQ(result.claims.issuedAt, 1000);
    EXPECT_EQ(result.claims.expiresAt, 4600);
}

TEST(JwtCodec, ExpiresAtExp) {
    const JwtCodec codec(kKey);
    const std::string token = codec.Sign(SampleClaims());
    EXPECT_EQ(codec.Verify(token, 4599).status, JwtStatus::Valid);
    EXPECT_EQ(codec.Verify(token, 4600).status, JwtStatus::Expired);
}

TEST(JwtCodec, RefusesATamperedPayload) {
    const JwtCodec codec(kKey);
    const std::string token = codec.Sign(SampleClaims());
    const std::size_t first = token.find('.');
    const std::size_t second = token.find('.', first + 1);
    AccessTokenClaims other = SampleClaims();
    other.subject = "user-2";
    const std::string otherToken = codec.Sign(other);
    const std::size_t otherFirst = otherToken.find('.');
    const std::size_t otherSecond = otherToken.find('.', otherFirst + 1);
    // The other token's payload under this token's signature.
    const std::string forged = token.substr(0, first + 1) +
                               otherToken.substr(otherFirst + 1, otherSecond - otherFirst - 1) +
                               token.substr(second);
    EXPECT_EQ(codec.Verify(forged, 2000).status, JwtStatus::BadSignature);
}

TEST(JwtCodec, RefusesAnotherKeysSignature) {
    const std::string token = JwtCodec(std::string(32, 'x')).Sign(SampleClaims());
    EXPECT_EQ(JwtCodec(kKey).Verify(token, 2000).status, JwtStatus::BadSignature);
}

TEST(JwtCodec, RefusesTheNoneAlgorithmAndMalformedTokens) {
    const JwtCodec codec(kKey);
    const std::string token = codec.Sign(SampleClaims());
    const std::string payload = token.substr(token.find('.') + 1);
    const std::string unsigned_ = Base64UrlEncode(R"({"alg":"none","typ":"JWT"})") + "." +
                                  payload.substr(0, payload.find('.')) + ".";
    EXPECT_EQ(codec.Verify(unsigned_, 2000).status, JwtStatus::Malformed);
    EXPECT_EQ(codec.Verify("", 2000).status, JwtStatus::Malformed);
    EXPECT_EQ(codec.Verify("a.b", 2000).status, JwtStatus::Malformed);
    EXPECT_EQ(codec.Verify(token + ".x", 2000).status, JwtStatus::Malformed);
    EXPECT_EQ(codec.Verify("!!.!!.!!", 2000).status, JwtStatus::Malformed);
}

TEST(JwtCodec, RefusesAShortKey) {
    EXPECT_THROW(JwtCodec(std::string(31, 'k')), std::invalid_argument);
}

}  // namespace
}  // namespace vantroserver::security
