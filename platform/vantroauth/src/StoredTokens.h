// One user's tokens as kept between calls and between runs: the refresh token, the last access
// token and when it expires (wall-clock seconds, since a steady reading means nothing to the
// next process), and the lifetime it was issued with. Parsed from the token endpoint's answer or
// from the stored JSON. A plain value; any thread. Never logged.
//
//   StoredTokens tokens = StoredTokens::FromTokenAnswer(reply.body, kResultBadResponse);
//   store->Save(key, tokens);
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include <kelcore/config/ResultCode.h>

namespace vantroauth {

struct StoredTokens {
    std::string refreshToken;
    std::string accessToken;
    /// Seconds since the epoch (system clock) at which the access token expires.
    std::int64_t expiresAt = 0;
    /// The access token's lifetime when issued (expires_in), in seconds.
    std::int64_t lifetime = 0;

    /// Reads the token endpoint's JSON (access_token, token_type Bearer, expires_in, and
    /// refresh_token when there is one), taking `now` as the time of issue. Throws
    /// kel_exception with `failureCode` when the text is not such an answer; the message never
    /// quotes the text.
    static StoredTokens FromTokenAnswer(
        const std::string& json, kelcore::config::ResultCode failureCode,
        std::chrono::system_clock::time_point now = std::chrono::system_clock::now());

    /// The stored form: {"refresh_token", "access_token", "expires_at", "lifetime"}.
    std::string ToJson() const;
    /// Reads the stored form. Throws kel_exception (kResultStorageFailure) when malformed.
    static StoredTokens FromJson(const std::string& json);

    bool HasRefreshToken() const { return !refreshToken.empty(); }
};

}  // namespace vantroauth
