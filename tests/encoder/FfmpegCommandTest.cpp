#include "FfmpegCommand.h"

#include <algorithm>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

using sarvex::FfmpegCommand;
using sarvex::protocol::SequenceDescription;

SequenceDescription TwoClips() {
    SequenceDescription sequence;
    sequence.width = 640;
    sequence.height = 360;
    sequence.frameRate = 29.97;
    sequence.clips = {{"/m/a.mov", 1.0, 3.5}, {"/m/b.mp4", 0.0, 2.0}};
    return sequence;
}

std::ptrdiff_t PositionOf(const std::vector<std::string>& arguments, const std::string& item) {
    const auto found = std::find(arguments.begin(), arguments.end(), item);
    return found == arguments.end() ? -1 : found - arguments.begin();
}

TEST(FfmpegCommand, ReadsEachClipsSpanThenPresetThenProgressThenOutput) {
    const FfmpegCommand command(TwoClips(), {true, false}, {"-c:v", "libx264"}, "/o/.x.mp4");
    const auto& arguments = command.Arguments();

    EXPECT_EQ(arguments.front(), "ffmpeg");
    EXPECT_EQ(arguments.back(), "file:/o/.x.mp4");
    const auto firstInput = PositionOf(arguments, "file:/m/a.mov");
    ASSERT_GE(firstInput, 5);
    EXPECT_EQ(arguments[firstInput - 5], "-ss");
    EXPECT_EQ(arguments[firstInput - 4], "1.000000");
    EXPECT_EQ(arguments[firstInput - 3], "-t");
    EXPECT_EQ(arguments[firstInput - 2], "2.500000");
    EXPECT_LT(firstInput, PositionOf(arguments, "file:/m/b.mp4"));
    EXPECT_LT(PositionOf(arguments, "file:/m/b.mp4"), PositionOf(arguments, "-filter_complex"));
    EXPECT_LT(PositionOf(arguments, "-filter_complex"), PositionOf(arguments, "libx264"));
    EXPECT_EQ(PositionOf(arguments, "-progress") + 1, PositionOf(arguments, "pipe:1"));
    EXPECT_LT(PositionOf(arguments, "libx264"), PositionOf(arguments, "-progress"));
    EXPECT_EQ(PositionOf(arguments, "-nostats"), static_cast<std::ptrdiff_t>(arguments.size()) - 2);
    EXPECT_EQ(PositionOf(arguments, "-re"), -1);
}

TEST(FfmpegCommand, FitsEachPictureAndGivesSilenceToAClipWithoutSound) {
    const FfmpegCommand command(TwoClips(), {true, false}, {}, "/o/x.mp4");
    const auto& graph = command.FilterGraph();

    EXPECT_NE(graph.find("[0:v:0]scale=640:360:force_original_aspect_ratio=decrease,pad=640:360"),
              std::string::npos);
    EXPECT_NE(graph.find("setsar=1,fps=30000/1001"), std::string::npos);
    EXPECT_NE(graph.find("[0:a:0]aresample=48000"), std::string::npos);
    EXPECT_EQ(graph.find("[1:a:0]"), std::string::npos);
    EXPECT_NE(graph.find("anullsrc=r=48000:cl=stereo,atrim=duration=2.000000"), std::string::npos);
    EXPECT_NE(graph.find("[v0][a0][v1][a1]concat=n=2:v=1:a=1[video][audio]"), std::string::npos);
}

TEST(FfmpegCommand, RealtimePaceReadsEveryInputAtItsOwnRate) {
    const FfmpegCommand command(TwoClips(), {true, true}, {}, "/o/x.mp4", true);
    const auto& arguments = command.Arguments();

    EXPECT_EQ(std::count(arguments.begin(), arguments.end(), "-re"), 2);
    EXPECT_EQ(arguments[PositionOf(arguments, "file:/m/a.mov") - 6], "-re");
}

TEST(FfmpegCommand, NeedsOneSoundFlagPerClip) {
    EXPECT_THROW(FfmpegCommand(TwoClips(), {true}, {}, "/o/x.mp4"), std::invalid_argument);
}

}  // namespace
