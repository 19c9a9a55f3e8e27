#include "ProgressDisplay.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace vantroshare {

std::string ProgressDisplay::StageName(Stage stage) {
    switch (stage) {
        case Stage::CreatingLink:
            return "creating link";
        case Stage::Queued:
            return "queued";
        case Stage::Encoding:
            return "encoding";
        case Stage::Uploading:
            return "uploading";
        case Stage::Cancelling:
            return "cancelling";
    }
    return "?";
}

std::string ProgressDisplay::FormatDuration(double seconds) {
    const long total = std::lround(std::max(0.0, seconds));
    char text[32];
    if (total >= 3600) {
        std::snprintf(text, sizeof(text), "%ld:%02ld:%02ld", total / 3600, total / 60 % 60,
                      total % 60);
    } else {
        std::snprintf(text, sizeof(text), "%ld:%02ld", total / 60, total % 60);
    }
    return text;
}

std::string ProgressDisplay::FormatLine(Stage stage, double fraction, double speedMbps,
                                        double remainingSeconds, bool withBar) {
    fraction = std::clamp(std::isfinite(fraction) ? fraction : 0.0, 0.0, 1.0);
    char name[16];
    std::snprintf(name, sizeof(name), "%-13s", StageName(stage).c_str());
    std::string line = name;
    const bool measured = stage == Stage::Encoding || stage == Stage::Uploading;
    if (withBar && measured) {
        constexpr int kWidth = 24;
        const int filled = static_cast<int>(std::floor(fraction * kWidth));
        line += " [" + std::string(static_cast<std::size_t>(filled), '#') +
                std::string(static_cast<std::size_t>(kWidth - filled), '.') + "]";
    }
    if (measured) {
        char percent[16];
        std::snprintf(percent, sizeof(percent), " %3d%%", static_cast<int>(fraction * 100.0));
        line += percent;
    }
    if (stage == Stage::Uploading && speedMbps > 0.0) {
        char speed[32];
        std::snprintf(speed, sizeof(speed), "  %.1f Mbit/s", speedMbps);
        line += speed;
    }
    if (measured && remainingSeconds > 0.0) {
        line += "  " + FormatDuration(remainingSeconds) + " left";
    }
    return line;
}

void ProgressDisplay::Show(Stage stage, double fraction, double speedMbps,
                           double remainingSeconds) {
    if (terminal) {
        const std::string line = FormatLine(stage, fraction, speedMbps, remainingSeconds, true);
        if (lineOpen && line == lastLine) {
            return;  // nothing the eye would see
        }
        out << "\r\033[K" << line << std::flush;
        lastLine = line;
        lineOpen = true;
        return;
    }
    const int tenth = static_cast<int>(std::floor(std::clamp(fraction, 0.0, 1.0) * 10.0));
    if (lastStage == stage && tenth <= lastTenth) {
        return;
    }
    lastStage = stage;
    lastTenth = tenth;
    out << FormatLine(stage, fraction, speedMbps, remainingSeconds, false) << std::endl;
}

void ProgressDisplay::Finish() {
    if (lineOpen) {
        out << "\n" << std::flush;
        lineOpen = false;
    }
}

}  // namespace vantroshare
