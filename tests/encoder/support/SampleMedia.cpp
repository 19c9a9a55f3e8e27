#include "encoder/support/SampleMedia.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include <boost/json.hpp>

#include "encoder/support/Subprocess.h"

namespace sarvextest {

std::filesystem::path MakeClip(const std::filesystem::path& directory, const std::string& name,
                               int width, int height, double seconds, bool withAudio) {
    const auto path = directory / name;
    const auto size = std::to_string(width) + "x" + std::to_string(height);
    const auto duration = std::to_string(seconds);
    std::vector<std::string> arguments{
        "ffmpeg", "-hide_banner", "-loglevel",
        "error",  "-y",           "-f",
        "lavfi",  "-i",           "testsrc=size=" + size + ":rate=25:duration=" + duration};
    if (withAudio) {
        arguments.insert(
            arguments.end(),
            {"-f", "lavfi", "-i", "sine=frequency=440:sample_rate=44100:duration=" + duration});
    }
    arguments.insert(arguments.end(),
                     {"-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p"});
    if (withAudio)
        arguments.insert(arguments.end(), {"-c:a", "aac", "-shortest"});
    arguments.push_back(path.string());
    const auto result = RunToEnd(arguments);
    if (result.exitCode != 0)
        throw std::runtime_error("ffmpeg could not make " + path.string() + ": " + result.err);
    return path;
}

sarvex::protocol::SequenceDescription MakeTwoClipSequence(const std::filesystem::path& directory,
                                                          bool longer) {
    sarvex::protocol::SequenceDescription sequence;
    sequence.name = "two clips";
    sequence.width = 320;
    sequence.height = 240;
    sequence.frameRate = 25;
    if (longer) {
        const auto a = MakeClip(directory, "a.mp4", 320, 240, 3.0, true);
        const auto b = MakeClip(directory, "b.mp4", 240, 320, 3.0, false);
        sequence.clips = {{a.string(), 0.0, 3.0}, {b.string(), 0.0, 3.0}};
    } else {
        const auto a = MakeClip(directory, "a.mp4", 320, 240, 3.0, true);
        const auto b = MakeClip(directory, "b.mp4", 240, 320, 2.0, false);
        sequence.clips = {{a.string(), 0.5, 2.0}, {b.string(), 0.0, 1.5}};
    }
    return sequence;
}

MediaProbe ProbeMedia(const std::filesystem::path& file) {
    const auto result =
        RunToEnd({"ffprobe", "-v", "error", "-show_entries",
                  "format=format_name,duration:stream=codec_type,codec_name,width,height", "-of",
                  "json", file.string()});
    if (result.exitCode != 0)
        throw std::runtime_error("ffprobe cannot read " + file.string() + ": " + result.err);
    const auto value = boost::json::parse(result.out).as_object();
    MediaProbe probe;
    const auto& format = value.at("format").as_object();
    probe.formatName = std::string(format.at("format_name").as_string());
    probe.duration = std::stod(std::string(format.at("duration").as_string()));
    for (const auto& item : value.at("streams").as_array()) {
        const auto& stream = item.as_object();
        const auto type = std::string(stream.at("codec_type").as_string());
        const auto codec = std::string(stream.at("codec_name").as_string());
        if (type == "video") {
            probe.videoCodecs.push_back(codec);
            probe.width = static_cast<int>(stream.at("width").to_number<double>());
            probe.height = static_cast<int>(stream.at("height").to_number<double>());
        } else if (type == "audio") {
            probe.audioCodecs.push_back(codec);
        }
    }
    return probe;
}

std::vector<std::string> DirectoryEntries(const std::filesystem::path& directory) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace sarvextest
