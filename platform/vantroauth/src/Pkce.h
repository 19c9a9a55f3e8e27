// The per-sign-in secrets of the authorization code flow with PKCE (S256): a 64-character
// verifier, its challenge (base64url of its SHA-256) and a state value, all from OpenSSL's
// random generator. Made once per Login and owned by it; a plain value, any thread.
//
//   const Pkce pkce = Pkce::Create();
//   url.params().append({"code_challenge", pkce.challenge});
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vantroauth {

struct Pkce {
    /// 48 random bytes in base64url: 64 characters of the unreserved set.
    std::string verifier;
    /// base64url(SHA-256(verifier)) without padding: 43 characters.
    std::string challenge;
    /// 32 random bytes in base64url, echoed by the redirect.
    std::string state;

    /// Fresh secrets. Throws kel_exception (kResultLoginFailed) when the generator fails.
    static Pkce Create();

    /// The S256 challenge of `verifier`.
    static std::string ChallengeOf(std::string_view verifier);
    /// Base64url without padding.
    static std::string Base64Url(const unsigned char* data, std::size_t size);
};

}  // namespace vantroauth
