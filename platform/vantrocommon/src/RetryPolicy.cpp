#include <vantrocommon/RetryPolicy.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <random>
#include <utility>

#include <vantrocommon/ResultCodes.h>

namespace vantrocommon {
namespace {

using std::chrono::milliseconds;

// A Retry-After beyond this many seconds ends the retries anyway; the cap only keeps the
// arithmetic inside its range.
constexpr std::uint64_t kLongestRetryAfterSeconds = 100'000'000;

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// Reads exactly `digits` decimal digits at `position` (any count when `digits` is 0, at least
/// one), moving past them.
std::optional<int> Number(std::string_view text, std::size_t& position, std::size_t digits) {
    const std::size_t start = position;
    while (position < text.size() && text[position] >= '0' && text[position] <= '9' &&
           (digits == 0 || position - start < digits)) {
        ++position;
    }
    if (position == start || (digits != 0 && position - start != digits) || position - start > 9) {
        return std::nullopt;
    }
    int value = 0;
    std::from_chars(text.data() + start, text.data() + position, value);
    return value;
}

bool Literal(std::string_view text, std::size_t& position, std::string_view expected) {
    if (text.substr(position, expected.size()) != expected) {
        return false;
    }
    position += expected.size();
    return true;
}

std::optional<unsigned> Month(std::string_view text, std::size_t& position) {
    static constexpr std::array<std::string_view, 12> kMonths = {
        "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (std::size_t i = 0; i < kMonths.size(); ++i) {
        if (Literal(text, position, kMonths[i])) {
            return static_cast<unsigned>(i + 1);
        }
    }
    return std::nullopt;
}

/// "HH:MM:SS" as seconds into the day.
std::optional<int> TimeOfDay(std::string_view text, std::size_t& position) {
    const auto hours = Number(text, position, 2);
    if (!hours || !Literal(text, position, ":")) {
        return std::nullopt;
    }
    const auto minutes = Number(text, position, 2);
    if (!minutes || !Literal(text, position, ":")) {
        return std::nullopt;
    }
    const auto seconds = Number(text, position, 2);
    // 60 is a leap second, which a date may carry.
    if (!seconds || *hours > 23 || *minutes > 59 || *seconds > 60) {
        return std::nullopt;
    }
    return *hours * 3600 + *minutes * 60 + *seconds;
}

std::optional<std::chrono::system_clock::time_point> Instant(int year, unsigned month, int day,
                                                             int secondOfDay) {
    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                           std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok()) {
        return std::nullopt;
    }
    return std::chrono::sys_days(date) + std::chrono::seconds(secondOfDay);
}

/// Skips a day name ("Sun", or "Sunday" when `longName`) and what follows it.
bool DayName(std::string_view text, std::size_t& position, bool longName) {
    static constexpr std::array<std::string_view, 7> kDays = {
        "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"};
    for (const auto day : kDays) {
        if (Literal(text, position, longName ? day : day.substr(0, 3))) {
            return true;
        }
    }
    return false;
}

/// "Sun, 06 Nov 1994 08:49:37 GMT".
std::optional<std::chrono::system_clock::time_point> ImfFixdate(std::string_view text) {
    std::size_t at = 0;
    if (!DayName(text, at, false) || !Literal(text, at, ", ")) {
        return std::nullopt;
    }
    const auto day = Number(text, at, 2);
    if (!day || !Literal(text, at, " ")) {
        return std::nullopt;
    }
    const auto month = Month(text, at);
    if (!month || !Literal(text, at, " ")) {
        return std::nullopt;
    }
    const auto year = Number(text, at, 4);
    if (!year || !Literal(text, at, " ")) {
        return std::nullopt;
    }
    const auto time = TimeOfDay(text, at);
    if (!time || !Literal(text, at, " GMT") || at != text.size()) {
        return std::nullopt;
    }
    return Instant(*year, *month, *day, *time);
}

/// "Sunday, 06-Nov-94 08:49:37 GMT". A two-digit year more than 50 years ahead of `now` is
/// read as the latest past year ending in those digits.
std::optional<std::chrono::system_clock::time_point> Rfc850Date(
    std::string_view text, std::chrono::system_clock::time_point now) {
    std::size_t at = 0;
    if (!DayName(text, at, true) || !Literal(text, at, ", ")) {
        return std::nullopt;
    }
    const auto day = Number(text, at, 2);
    if (!day || !Literal(text, at, "-")) {
        return std::nullopt;
    }
    const auto month = Month(text, at);
    if (!month || !Literal(text, at, "-")) {
        return std::nullopt;
    }
    const auto shortYear = Number(text, at, 2);
    if (!shortYear || !Literal(text, at, " ")) {
        return std::nullopt;
    }
    const auto time = TimeOfDay(text, at);
    if (!time || !Literal(text, at, " GMT") || at != text.size()) {
        return std::nullopt;
    }
    const int thisYear = static_cast<int>(
        std::chrono::year_month_day(std::chrono::floor<std::chrono::days>(now)).year());
    int year = thisYear - thisYear % 100 + *shortYear;
    if (year > thisYear + 50) {
        year -= 100;
    }
    return Instant(year, *month, *day, *time);
}

/// "Sun Nov  6 08:49:37 1994".
std::optional<std::chrono::system_clock::time_point> AsctimeDate(std::string_view text) {
    std::size_t at = 0;
    if (!DayName(text, at, false) || !Literal(text, at, " ")) {
        return std::nullopt;
    }
    const auto month = Month(text, at);
    if (!month || !Literal(text, at, " ")) {
        return std::nullopt;
    }
    Literal(text, at, " ");  // a one-digit day is padded with a space
    const auto day = Number(text, at, 0);
    if (!day || *day > 31 || !Literal(text, at, " ")) {
        return std::nullopt;
    }
    const auto time = TimeOfDay(text, at);
    if (!time || !Literal(text, at, " ")) {
        return std::nullopt;
    }
    const auto year = Number(text, at, 4);
    if (!year || at != text.size()) {
        return std::nullopt;
    }
    return Instant(*year, *month, *day, *time);
}

double DefaultRandom() {
    thread_local std::mt19937_64 generator{std::random_device{}()};
    return std::uniform_real_distribution<double>(0.0, 1.0)(generator);
}

}  // namespace

bool RetryPolicy::IsRetryableStatus(int status) const {
    switch (status) {
        case 408:
        case 500:
        case 502:
        case 503:
        case 504:
            return true;
        case 429:
            return retryTooManyRequests;
        default:
            return false;
    }
}

bool RetryPolicy::IsRetryableFailure(kelcore::config::ResultCode result) {
    return result == kResultNetworkFailure || result == kResultTimedOut;
}

std::optional<milliseconds> ParseRetryAfter(std::string_view value,
                                            std::chrono::system_clock::time_point now) {
    value = Trim(value);
    if (value.empty()) {
        return std::nullopt;
    }
    if (value.find_first_not_of("0123456789") == std::string_view::npos) {
        std::uint64_t seconds = 0;
        const auto [end, error] =
            std::from_chars(value.data(), value.data() + value.size(), seconds);
        if (error == std::errc::result_out_of_range || seconds > kLongestRetryAfterSeconds) {
            seconds = kLongestRetryAfterSeconds;
        }
        return std::chrono::duration_cast<milliseconds>(
            std::chrono::seconds(static_cast<std::int64_t>(seconds)));
    }
    auto date = ImfFixdate(value);
    if (!date) {
        date = Rfc850Date(value, now);
    }
    if (!date) {
        date = AsctimeDate(value);
    }
    if (!date) {
        return std::nullopt;
    }
    if (*date <= now) {
        return milliseconds(0);
    }
    return std::chrono::ceil<milliseconds>(*date - now);
}

RetrySchedule::RetrySchedule(RetryPolicy policy, std::function<double()> random)
    : policy(std::move(policy)), random(random ? std::move(random) : DefaultRandom) {}

std::optional<milliseconds> RetrySchedule::NextDelay(const http::Reply& reply) {
    if (!policy.IsRetryableStatus(reply.status)) {
        return std::nullopt;
    }
    std::optional<milliseconds> asked;
    if (const std::string* retryAfter = reply.Header("Retry-After")) {
        asked = ParseRetryAfter(*retryAfter);
    }
    return Next(asked);
}

std::optional<milliseconds> RetrySchedule::NextDelay(kelcore::config::ResultCode failure) {
    if (!RetryPolicy::IsRetryableFailure(failure)) {
        return std::nullopt;
    }
    return Next(std::nullopt);
}

std::optional<milliseconds> RetrySchedule::Next(std::optional<milliseconds> asked) {
    if (attempts >= policy.maxAttempts) {
        return std::nullopt;
    }
    milliseconds delay{0};
    if (asked) {
        delay = *asked;
    } else {
        // Full jitter: anywhere from nothing to the exponential ceiling, so clients that failed
        // together do not come back together. Doubling stops at the cap rather than overflow.
        milliseconds ceiling = std::min(policy.initialDelay, policy.maxDelay);
        for (int retry = 1; retry < attempts && ceiling < policy.maxDelay; ++retry) {
            ceiling = std::min(ceiling * 2, policy.maxDelay);
        }
        const double fraction = std::clamp(random(), 0.0, 1.0);
        delay = milliseconds(
            static_cast<milliseconds::rep>(fraction * static_cast<double>(ceiling.count())));
    }
    if (delay.count() < 0 || waited + delay > policy.budget) {
        return std::nullopt;
    }
    waited += delay;
    ++attempts;
    return delay;
}

}  // namespace vantrocommon
