// The one retry policy of the cloud libraries: exponential backoff with full jitter, a cap on
// attempts and a budget of total waiting, and Retry-After honoured in both its forms (seconds,
// or an HTTP date) without ever waiting past the budget. A plain value; RetrySchedule keeps the
// state of one request's tries. Any thread.
//
//   RetrySchedule schedule(policy);
//   if (auto delay = schedule.NextDelay(reply)) executor->PostAfterDelay(resend, delay->count());
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include <kelcore/config/ResultCode.h>

#include <vantrocommon/http/Reply.h>

namespace vantrocommon {

struct RetryPolicy {
    /// Tries in all, the first included.
    int maxAttempts = 5;
    std::chrono::milliseconds initialDelay{250};
    std::chrono::milliseconds maxDelay{8'000};
    /// Waiting between tries never adds up to more than this.
    std::chrono::milliseconds budget{30'000};
    /// Whether a 429 answer is retried here (false where the caller runs its own rate protocol).
    bool retryTooManyRequests = true;

    /// Whether a reply's status calls for another try: 408, 429 (see above), 500, 502, 503, 504.
    bool IsRetryableStatus(int status) const;
    /// Whether a failed exchange calls for another try: network failures and time-outs; never
    /// a cancellation, a TLS refusal or a file error.
    static bool IsRetryableFailure(kelcore::config::ResultCode result);
};

/// The delay a Retry-After value asks for: whole seconds, or an IMF-fixdate (or the two obsolete
/// HTTP date forms) measured against `now`; a date in the past is 0. Null when unparsable.
std::optional<std::chrono::milliseconds> ParseRetryAfter(
    std::string_view value,
    std::chrono::system_clock::time_point now = std::chrono::system_clock::now());

class RetrySchedule {
public:
    /// `random` gives numbers in [0, 1) for the jitter; tests pass a fixed one.
    explicit RetrySchedule(RetryPolicy policy, std::function<double()> random = {});

    /// After a reply: the delay before the next try, or null when the status is final or the
    /// attempts or the budget are spent. Retry-After, when present and parsable, replaces the
    /// backoff (still within the budget: a longer demand ends the retries).
    std::optional<std::chrono::milliseconds> NextDelay(const http::Reply& reply);
    /// After a failed exchange (a result code): as above, without Retry-After.
    std::optional<std::chrono::milliseconds> NextDelay(kelcore::config::ResultCode failure);

    int AttemptsMade() const { return attempts; }
    std::chrono::milliseconds Waited() const { return waited; }

private:
    std::optional<std::chrono::milliseconds> Next(std::optional<std::chrono::milliseconds> asked);

    RetryPolicy policy;
    std::function<double()> random;
    int attempts = 1;
    std::chrono::milliseconds waited{0};
};

}  // namespace vantrocommon
