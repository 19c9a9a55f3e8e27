// Spaces requests so that no window of the service's advertised length holds more of them than
// it allows. The limits are learned from the X-RATELIMIT-LIMIT and X-RATELIMIT-WINDOW headers of
// every answer; until one has told, nothing is delayed (but every request is remembered, since
// the service counts it). Each request reserves its slot when it is scheduled, so requests
// scheduled together are spread out rather than all sent when the window frees up.
// Owned by the datastore; any thread (its own mutex).
//
//   const auto delay = pacer.Reserve(kelcore::threads::Now());
//   executor->PostAfterDelay(send, delay.count());
//   ... pacer.Learn(reply);
#pragma once

#include <chrono>
#include <deque>
#include <mutex>
#include <optional>

#include <kelcore/threads/Clock.h>
#include <vantrocommon/http/Reply.h>

namespace vantro::detail {

class RatePacer {
public:
    using TimePoint = kelcore::threads::Clock::TimePoint;

    /// Takes the limits a reply advertises; a reply without both headers, or with values that
    /// are not positive whole numbers, changes nothing. Any thread.
    void Learn(const vantrocommon::http::Reply& reply);
    /// Reserves the earliest slot at or after `now` that keeps every window within the limit and
    /// answers how long to wait for it. Any thread.
    std::chrono::milliseconds Reserve(TimePoint now);
    /// The advertised window, once known. Any thread.
    std::optional<std::chrono::milliseconds> Window() const;
    /// The advertised limit, once known. Any thread.
    std::optional<long> Limit() const;
    /// Forgets limits and history (a new session, a new token). Any thread.
    void Reset();

private:
    mutable std::mutex mutex;
    std::optional<long> limit;
    std::chrono::milliseconds window{0};
    // Send times of the requests that may still count, oldest first (reserved ones included).
    std::deque<TimePoint> slots;
};

}  // namespace vantro::detail
