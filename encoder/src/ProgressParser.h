// Turns FFmpeg's `-progress pipe:1` output into a job's progress: the fraction of the sequence
// written so far (never decreasing, 0 to 1) and the seconds left at the rate so far. FFmpeg
// prints key=value lines in blocks that end with "progress=continue" or "progress=end"; the
// position is `out_time_us`, which reads "N/A" before the first frame. Owned by one render
// job, used on its thread; the clock is passed in so tests can drive it.
//
//   ProgressParser parser(sequenceSeconds, Clock::now());
//   if (auto update = parser.Feed(line, Clock::now())) Report(update->fraction, ...);
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace sarvex {

class ProgressParser {
public:
    using Clock = std::chrono::steady_clock;

    struct Update {
        double fraction = 0.0;
        double remainingSeconds = -1.0;  ///< negative while the rate is not known yet
    };

    ProgressParser(double durationSeconds, Clock::time_point start);

    /// Takes one line of FFmpeg's progress output. Returns an update at the end of each block;
    /// nothing for the other lines.
    std::optional<Update> Feed(std::string_view line, Clock::time_point now);

    double Fraction() const { return fraction; }

private:
    double durationSeconds;
    Clock::time_point start;
    double fraction = 0.0;
};

}  // namespace sarvex
