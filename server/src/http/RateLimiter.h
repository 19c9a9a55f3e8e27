// Counts requests per access token in a sliding window: at most `limit.requests` in any span of
// `limit.window`. Owned by the server; any thread (one mutex around the table, held briefly).
//
//   RateLimiter limiter({100, 1000ms});
//   if (auto wait = limiter.Acquire(token); wait) { /* 429, Retry-After from *wait */ }
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "http/ServeOptions.h"

namespace vantroserver::http {

class RateLimiter {
public:
    using Clock = std::chrono::steady_clock;
    using Now = std::function<Clock::time_point()>;

    /// `now` reads the time (tests pass a virtual clock).
    explicit RateLimiter(RateLimit limit, Now now = Clock::now);

    /// Counts one request for `key`. Returns nothing when it is allowed, or how long until the
    /// oldest counted request leaves the window when the key is over its limit (the refused
    /// request is not counted).
    std::optional<std::chrono::milliseconds> Acquire(std::string_view key);
    const RateLimit& Limit() const { return limit; }

private:
    void ForgetIdleKeys(Clock::time_point now);

    const RateLimit limit;
    const Now now;
    std::mutex mutex;
    // Times of the requests still inside the window, oldest first.
    std::unordered_map<std::string, std::deque<Clock::time_point>> requests;
    Clock::time_point lastSweep;
};

}  // namespace vantroserver::http
