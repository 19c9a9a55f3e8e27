#include "store/Timestamp.h"

#include <ctime>

namespace vantroserver::store {

Timestamp TimestampFromMilliseconds(std::int64_t milliseconds) {
    return Timestamp(std::chrono::milliseconds(milliseconds));
}

std::int64_t MillisecondsOf(Timestamp timestamp) {
    return timestamp.time_since_epoch().count();
}

std::string FormatIso8601(Timestamp timestamp) {
    const std::time_t seconds =
        std::chrono::duration_cast<std::chrono::seconds>(timestamp.time_since_epoch()).count();
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[32];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return std::string(text, length);
}

}  // namespace vantroserver::store
