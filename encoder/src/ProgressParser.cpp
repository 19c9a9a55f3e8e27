#include "ProgressParser.h"

#include <algorithm>
#include <charconv>

namespace sarvex {
namespace {

// Below this much work or time the rate says little; the estimate would jump about.
constexpr double kMinimumFractionForEstimate = 0.01;
constexpr double kMinimumSecondsForEstimate = 0.25;

}  // namespace

ProgressParser::ProgressParser(double durationSeconds, Clock::time_point start)
    : durationSeconds(durationSeconds), start(start) {}

std::optional<ProgressParser::Update> ProgressParser::Feed(std::string_view line,
                                                           Clock::time_point now) {
    const auto equals = line.find('=');
    if (equals == std::string_view::npos)
        return std::nullopt;
    const auto key = line.substr(0, equals);
    const auto value = line.substr(equals + 1);

    if (key == "out_time_us") {
        long long microseconds = 0;
        const auto [end, error] =
            std::from_chars(value.data(), value.data() + value.size(), microseconds);
        // "N/A" before the first frame, and FFmpeg may print a negative time while its
        // first packets are still before zero: neither moves the job forward.
        if (error == std::errc() && end == value.data() + value.size() && microseconds > 0 &&
            durationSeconds > 0) {
            const double position = static_cast<double>(microseconds) / 1e6 / durationSeconds;
            fraction = std::max(fraction, std::min(1.0, position));
        }
        return std::nullopt;
    }
    if (key != "progress")
        return std::nullopt;

    Update update;
    update.fraction = fraction;
    const double elapsed = std::chrono::duration<double>(now - start).count();
    if (fraction >= 1.0) {
        update.remainingSeconds = 0.0;
    } else if (fraction >= kMinimumFractionForEstimate && elapsed >= kMinimumSecondsForEstimate) {
        update.remainingSeconds = elapsed * (1.0 - fraction) / fraction;
    }
    return update;
}

}  // namespace sarvex
