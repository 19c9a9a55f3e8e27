// A short real video, as the encoder would render it: two seconds of a test pattern with a tone,
// H.264 and AAC in MP4, made with the ffmpeg command. Rendered once per test program, beside its
// executable, and reused by every test of it (each test runs in a process of its own). Any
// thread; two processes rendering at once each write their own file and rename it into place.
//
//   std::filesystem::copy_file(TestClip::Path(), outputPath);
#pragma once

#include <filesystem>

namespace vantrokelui::model::testing {

class TestClip {
public:
    /// The clip, rendered first when it is not there yet. Throws std::runtime_error when ffmpeg
    /// cannot render it.
    static std::filesystem::path Path();
};

}  // namespace vantrokelui::model::testing
