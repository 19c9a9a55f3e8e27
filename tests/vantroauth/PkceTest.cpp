// The PKCE secrets: shapes, randomness and the S256 challenge.
#include <gtest/gtest.h>

#include <set>
#include <string>

// An implementation header of the library, reached by path: it is not installed.
#include "../../platform/vantroauth/src/Pkce.h"

namespace vantroauthtest {
namespace {

using vantroauth::Pkce;

bool IsBase64Url(const std::string& text) {
    return text.find_first_not_of(
               "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_") ==
           std::string::npos;
}

TEST(Pkce, TheChallengeIsTheBase64UrlOfTheVerifiersSha256) {
    // The worked example of the PKCE standard.
    EXPECT_EQ(Pkce::ChallengeOf("dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"),
              "E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM");
}

TEST(Pkce, SecretsHaveTheirLengthsAndAlphabet) {
    const Pkce pkce = Pkce::Create();

    EXPECT_EQ(pkce.verifier.size(), 64u);
    EXPECT_EQ(pkce.challenge.size(), 43u);
    EXPECT_EQ(pkce.state.size(), 43u);
    EXPECT_TRUE(IsBase64Url(pkce.verifier)) << pkce.verifier;
    EXPECT_TRUE(IsBase64Url(pkce.challenge)) << pkce.challenge;
    EXPECT_TRUE(IsBase64Url(pkce.state)) << pkce.state;
    EXPECT_EQ(pkce.challenge, Pkce::ChallengeOf(pkce.verifier));
}

TEST(Pkce, EachSignInGetsFreshSecrets) {
    std::set<std::string> verifiers;
    std::set<std::string> states;
    for (int i = 0; i < 100; ++i) {
        const Pkce pkce = Pkce::Create();
        verifiers.insert(pkce.verifier);
        states.insert(pkce.state);
    }
    EXPECT_EQ(verifiers.size(), 100u);
    EXPECT_EQ(states.size(), 100u);
}

TEST(Pkce, Base64UrlHasNoPadding) {
    const unsigned char bytes[] = {0xFB, 0xFF};
    EXPECT_EQ(Pkce::Base64Url(bytes, 1), "-w");
    EXPECT_EQ(Pkce::Base64Url(bytes, 2), "-_8");
}

}  // namespace
}  // namespace vantroauthtest
