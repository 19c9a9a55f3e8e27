// Builds the one FFmpeg command line that renders a sequence: each clip read from its in point
// for its span, its picture fitted into the sequence frame (scaled keeping its aspect, padded,
// square pixels, the sequence's frame rate) and its sound resampled to 48 kHz stereo, or
// silence for a clip without sound; the pieces concatenated, then the preset's arguments,
// the progress pipe and the output. Paths go through the file: protocol, so a name is never
// taken for a URL. A plain value, any thread.
//
//   FfmpegCommand command(sequence, clipHasAudio, preset.Arguments(), temporaryPath);
//   ChildProcess::Start(io, command.Arguments(), ...);
#pragma once

#include <string>
#include <vector>

#include <sarvex/protocol/SequenceDescription.h>

namespace sarvex {

class FfmpegCommand {
public:
    /// `clipHasAudio` has one entry per clip. With `realtime` every input is read at its own
    /// pace (-re), so a render lasts about as long as the sequence; only tests want that.
    FfmpegCommand(const protocol::SequenceDescription& sequence,
                  const std::vector<bool>& clipHasAudio,
                  const std::vector<std::string>& presetArguments, const std::string& outputPath,
                  bool realtime = false, std::string program = "ffmpeg");

    /// The program first, then its arguments.
    const std::vector<std::string>& Arguments() const { return arguments; }
    /// The filter graph alone, for messages and tests.
    const std::string& FilterGraph() const { return filterGraph; }

private:
    std::vector<std::string> arguments;
    std::string filterGraph;
};

}  // namespace sarvex
