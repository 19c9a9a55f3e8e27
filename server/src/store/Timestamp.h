// Times as the store keeps them (milliseconds since the epoch, UTC) and as the API shows them
// (ISO 8601 UTC). Free functions; any thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace vantroserver::store {

using Clock = std::chrono::system_clock;
using Timestamp = std::chrono::time_point<Clock, std::chrono::milliseconds>;

Timestamp TimestampFromMilliseconds(std::int64_t milliseconds);
std::int64_t MillisecondsOf(Timestamp timestamp);

/// `2024-05-01T12:34:56Z` (seconds precision, always UTC).
std::string FormatIso8601(Timestamp timestamp);

}  // namespace vantroserver::store
