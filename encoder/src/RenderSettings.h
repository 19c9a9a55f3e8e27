// How sarvex renders, the same for every job of a process: where presets named by a relative
// path are found, which programs do the work and how long a stopped FFmpeg may take to go.
// A plain value, set up once by main and copied into the queue or the one-shot job.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace sarvex {

struct RenderSettings {
    std::filesystem::path presetDirectory;
    std::string ffmpeg = "ffmpeg";
    std::string ffprobe = "ffprobe";
    /// Inputs read at their own pace, so a render takes about the sequence's duration. For
    /// tests that must act while a render runs; it changes nothing but the reading speed.
    bool realtime = false;
    /// After SIGTERM, how long FFmpeg has to end before SIGKILL.
    std::chrono::milliseconds stopGrace{2000};
    /// When set, a job hands the FFmpeg command that would write its output (straight to the
    /// output path) to this function instead of running it, and ends cancelled.
    std::function<void(const std::vector<std::string>& command)> printCommand;
};

}  // namespace sarvex
