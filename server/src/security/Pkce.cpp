#include "security/Pkce.h"

#include "security/Digest.h"
#include "security/Encoding.h"

namespace vantroserver::security {

namespace {

bool IsUnreserved(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

bool IsBase64Url(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_';
}

}  // namespace

std::string Pkce::ChallengeS256(std::string_view verifier) {
    return Base64UrlEncode(Sha256(verifier));
}

bool Pkce::VerifyS256(std::string_view verifier, std::string_view challenge) {
    if (verifier.size() < 43 || verifier.size() > 128) {
        return false;
    }
    for (const char c : verifier) {
        if (!IsUnreserved(c)) {
            return false;
        }
    }
    return ConstantTimeEquals(ChallengeS256(verifier), challenge);
}

bool Pkce::IsWellFormedChallenge(std::string_view challenge) {
    if (challenge.size() != 43) {
        return false;
    }
    for (const char c : challenge) {
        if (!IsBase64Url(c)) {
            return false;
        }
    }
    return true;
}

}  // namespace vantroserver::security
