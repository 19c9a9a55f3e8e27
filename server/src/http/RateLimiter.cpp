#include "http/RateLimiter.h"

#include <stdexcept>

namespace vantroserver::http {

namespace {
// Tokens that stopped sending are dropped from the table at most this often.
constexpr std::size_t kSweepThreshold = 1024;
}  // namespace

RateLimiter::RateLimiter(RateLimit limit, Now now)
    : limit(limit), now(std::move(now)), lastSweep(this->now()) {
    if (limit.requests == 0 || limit.window.count() <= 0) {
        throw std::invalid_argument("rate limit needs at least one request per positive window");
    }
}

std::optional<std::chrono::milliseconds> RateLimiter::Acquire(std::string_view key) {
    const auto at = now();
    std::lock_guard lock(mutex);
    if (requests.size() >= kSweepThreshold && at - lastSweep >= limit.window) {
        ForgetIdleKeys(at);
    }
    auto& times = requests[std::string(key)];
    while (!times.empty() && at - times.front() >= limit.window) {
        times.pop_front();
    }
    if (times.size() >= limit.requests) {
        const auto wait = times.front() + limit.window - at;
        return std::chrono::ceil<std::chrono::milliseconds>(wait);
    }
    times.push_back(at);
    return std::nullopt;
}

void RateLimiter::ForgetIdleKeys(Clock::time_point at) {
    lastSweep = at;
    std::erase_if(requests,
                  [&](const auto& entry) { return at - entry.second.back() >= limit.window; });
}

}  // namespace vantroserver::http
