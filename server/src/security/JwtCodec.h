// Signs and verifies access tokens in compact JWT form with HS256 (HMAC-SHA256 via OpenSSL).
// Only the header {"alg":"HS256","typ":"JWT"} is accepted; any other algorithm is refused.
// Holds the signing key; const methods, safe from any thread.
//
//   JwtCodec codec(key);
//   std::string token = codec.Sign(claims);
//   auto result = codec.Verify(token, nowSeconds);   // result.status == JwtStatus::Valid
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "security/AccessTokenClaims.h"

namespace vantroserver::security {

enum class JwtStatus { Valid, Malformed, BadSignature, Expired };

struct JwtVerification {
    JwtStatus status = JwtStatus::Malformed;
    AccessTokenClaims claims;  ///< Filled when the signature is good (also when expired).
};

class JwtCodec {
public:
    /// `key` is the raw HMAC key; throws std::invalid_argument when it is shorter than 32 bytes.
    explicit JwtCodec(std::string key);

    std::string Sign(const AccessTokenClaims& claims) const;

    /// Checks form, algorithm and signature (in constant time), then that `nowSeconds` is
    /// before `exp`.
    JwtVerification Verify(std::string_view token, std::int64_t nowSeconds) const;

private:
    std::string key;
};

}  // namespace vantroserver::security
