// Small media files for sarvex's tests, made with FFmpeg's generated sources in a test's
// temporary directory, and a probe of the files sarvex renders. Test thread only.
//
//   const auto clip = MakeClip(directory.Path(), "a.mp4", 320, 240, 3.0, true);
//   const auto probe = ProbeMedia(output);
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <sarvex/protocol/SequenceDescription.h>

namespace sarvextest {

/// An H.264 clip with a test picture of `width`×`height` at 25 fps, lasting `seconds`, with a
/// tone when `withAudio`. Throws std::runtime_error when FFmpeg fails.
std::filesystem::path MakeClip(const std::filesystem::path& directory, const std::string& name,
                               int width, int height, double seconds, bool withAudio);

/// Two clips of different sizes, the second without sound: 0.5 s to 2 s of a 3 s 320×240 clip
/// with sound, then 0 to 1.5 s of a 2 s 240×320 clip without. A 320×240 sequence at 25 fps,
/// 3 s long. With `longer`, spans of 3 s each (6 s) for tests that act while it renders.
sarvex::protocol::SequenceDescription MakeTwoClipSequence(const std::filesystem::path& directory,
                                                          bool longer = false);

struct MediaProbe {
    std::string formatName;  ///< as ffprobe names it, e.g. "mov,mp4,m4a,3gp,3g2,mj2"
    double duration = 0.0;
    std::vector<std::string> videoCodecs;
    std::vector<std::string> audioCodecs;
    int width = 0;
    int height = 0;
};
/// Reads `file` with ffprobe. Throws std::runtime_error when it cannot.
MediaProbe ProbeMedia(const std::filesystem::path& file);

/// The names of the entries of `directory`, sorted.
std::vector<std::string> DirectoryEntries(const std::filesystem::path& directory);

}  // namespace sarvextest
