// Reads the times of a JWT access token without verifying it: the client only needs to know
// when to ask for a new one, and the service checks the signature. Stateless; any thread.
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace vantrosdk::detail {

struct TokenTimes {
    std::chrono::system_clock::time_point expiresAt;
    /// When the token was issued; empty when the token does not say.
    std::optional<std::chrono::system_clock::time_point> issuedAt;
};

/// The `exp` (and `iat`) claims of `token`'s payload (base64url JSON, the second of three
/// dot-separated parts); empty when the token is not a JWT or has no numeric `exp`.
std::optional<TokenTimes> ReadTokenTimes(std::string_view token);

/// How long before expiry to ask for a new token: min(60 s, a tenth of the token's life), so a
/// short-lived token is not refreshed over and over the moment it arrives.
std::chrono::milliseconds RefreshMargin(const TokenTimes& times,
                                        std::chrono::system_clock::time_point now);

}  // namespace vantrosdk::detail
