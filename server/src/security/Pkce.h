// The PKCE S256 check of the token endpoint: BASE64URL(SHA256(ASCII(code_verifier))) must equal
// the code_challenge sent to the authorize endpoint. Stateless; any thread.
#pragma once

#include <string>
#include <string_view>

namespace vantroserver::security {

class Pkce {
public:
    /// The S256 challenge of `verifier`.
    static std::string ChallengeS256(std::string_view verifier);

    /// Whether `verifier` is a well-formed verifier (43 to 128 characters of
    /// [A-Za-z0-9-._~]) whose S256 challenge equals `challenge`. Compares in constant time.
    static bool VerifyS256(std::string_view verifier, std::string_view challenge);

    /// Whether `challenge` has the shape of an S256 challenge (43 base64url characters).
    static bool IsWellFormedChallenge(std::string_view challenge);
};

}  // namespace vantroserver::security
