#include "detail/RatePacer.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace vantro::detail {
namespace {

std::optional<long> PositiveNumber(const std::string* text) {
    if (text == nullptr) {
        return std::nullopt;
    }
    long value = 0;
    const auto* end = text->data() + text->size();
    const auto [rest, error] = std::from_chars(text->data(), end, value);
    if (error != std::errc() || rest != end || value <= 0) {
        return std::nullopt;
    }
    return value;
}

// The service counts a request when it arrives, and the network may hold one request back more
// than the next; a little room per window keeps such reordering from crossing the limit.
std::chrono::milliseconds MarginOf(std::chrono::milliseconds window) {
    return std::min(window / 20, std::chrono::milliseconds(250));
}

}  // namespace

void RatePacer::Learn(const vantrocommon::http::Reply& reply) {
    const auto newLimit = PositiveNumber(reply.Header("X-RATELIMIT-LIMIT"));
    const auto newWindow = PositiveNumber(reply.Header("X-RATELIMIT-WINDOW"));
    if (!newLimit || !newWindow) {
        return;
    }
    std::lock_guard lock(mutex);
    limit = newLimit;
    window = std::chrono::milliseconds(*newWindow);
}

std::chrono::milliseconds RatePacer::Reserve(TimePoint now) {
    std::lock_guard lock(mutex);
    TimePoint slot = now;
    if (limit) {
        const auto span = window + MarginOf(window);
        while (!slots.empty() && slots.front() + span <= now) {
            slots.pop_front();
        }
        const auto count = static_cast<long>(slots.size());
        if (count >= *limit) {
            // Slots stay sorted: each one is at least a span after the one `limit` places back.
            slot = std::max(now, slots[static_cast<std::size_t>(count - *limit)] + span);
        }
    } else if (slots.size() > 10'000) {
        slots.pop_front();  // nothing told yet: keep the history bounded
    }
    slots.push_back(slot);
    return std::chrono::ceil<std::chrono::milliseconds>(slot - now);
}

std::optional<std::chrono::milliseconds> RatePacer::Window() const {
    std::lock_guard lock(mutex);
    return limit ? std::optional(window) : std::nullopt;
}

std::optional<long> RatePacer::Limit() const {
    std::lock_guard lock(mutex);
    return limit;
}

void RatePacer::Reset() {
    std::lock_guard lock(mutex);
    limit.reset();
    window = std::chrono::milliseconds(0);
    slots.clear();
}

}  // namespace vantro::detail
