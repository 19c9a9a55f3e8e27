#include "FfmpegCommand.h"

#include <cmath>
#include <sstream>
#include <stdexcept>

namespace sarvex {
namespace {

// Seconds and rates as FFmpeg reads them, without exponents and exact enough for a frame.
std::string Number(double value) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.setf(std::ios::fixed);
    text.precision(6);
    text << value;
    return text.str();
}

// NTSC-style rates are written as the rationals they stand for, so frames land exactly.
std::string FrameRate(double rate) {
    for (const int base : {24, 30, 60, 120}) {
        if (std::abs(rate - base * 1000.0 / 1001.0) < 0.005)
            return std::to_string(base * 1000) + "/1001";
    }
    if (std::abs(rate - std::round(rate)) < 1e-9)
        return std::to_string(static_cast<long long>(std::round(rate)));
    return Number(rate);
}

}  // namespace

FfmpegCommand::FfmpegCommand(const protocol::SequenceDescription& sequence,
                             const std::vector<bool>& clipHasAudio,
                             const std::vector<std::string>& presetArguments,
                             const std::string& outputPath, bool realtime, std::string program) {
    if (clipHasAudio.size() != sequence.clips.size())
        throw std::invalid_argument("one audio flag per clip is needed");

    arguments = {std::move(program), "-hide_banner", "-nostdin", "-loglevel", "error", "-y"};
    const auto width = std::to_string(sequence.width);
    const auto height = std::to_string(sequence.height);
    const auto rate = FrameRate(sequence.frameRate);

    std::ostringstream graph;
    std::string concatInputs;
    for (std::size_t index = 0; index < sequence.clips.size(); ++index) {
        const auto& clip = sequence.clips[index];
        const auto span = Number(clip.out - clip.in);
        if (realtime)
            arguments.push_back("-re");
        arguments.insert(arguments.end(),
                         {"-ss", Number(clip.in), "-t", span, "-i", "file:" + clip.path});

        const auto input = std::to_string(index);
        // A clip shorter than its span is held on its last frame and trimmed to the span, so
        // every piece lasts exactly what the sequence says and sound stays in step.
        graph << "[" << input << ":v:0]scale=" << width << ":" << height
              << ":force_original_aspect_ratio=decrease,pad=" << width << ":" << height
              << ":(ow-iw)/2:(oh-ih)/2,setsar=1,fps=" << rate
              << ",tpad=stop_mode=clone:stop_duration=" << span << ",trim=duration=" << span
              << ",setpts=PTS-STARTPTS[v" << input << "];";
        if (clipHasAudio[index]) {
            graph << "[" << input << ":a:0]aresample=48000,aformat=sample_rates=48000:"
                  << "channel_layouts=stereo,apad,atrim=duration=" << span
                  << ",asetpts=PTS-STARTPTS[a" << input << "];";
        } else {
            graph << "anullsrc=r=48000:cl=stereo,atrim=duration=" << span
                  << ",asetpts=PTS-STARTPTS[a" << input << "];";
        }
        concatInputs += "[v" + input + "][a" + input + "]";
    }
    graph << concatInputs << "concat=n=" << sequence.clips.size() << ":v=1:a=1[video][audio]";
    filterGraph = graph.str();

    arguments.insert(arguments.end(),
                     {"-filter_complex", filterGraph, "-map", "[video]", "-map", "[audio]"});
    arguments.insert(arguments.end(), presetArguments.begin(), presetArguments.end());
    arguments.insert(arguments.end(), {"-progress", "pipe:1", "-nostats", "file:" + outputPath});
}

}  // namespace sarvex
