// The one-shot `sarvex render` command, run as users run it.
#include <signal.h>

#include <gtest/gtest.h>
#include <sarvex/protocol/Wire.h>

#include "encoder/support/SampleMedia.h"
#include "encoder/support/Subprocess.h"
#include "support/TemporaryDirectory.h"

namespace sarvextest {
namespace {

class SarvexRender : public ::testing::Test {
protected:
    ProgramResult Render(const sarvex::protocol::SequenceDescription& sequence,
                         const std::filesystem::path& preset, const std::filesystem::path& output) {
        const auto sequenceFile =
            directory.Write("sequence.json", sarvex::protocol::EncodeSequence(sequence));
        return RunToEnd({SarvexProgram().string(), "render", "--sequence", sequenceFile.string(),
                         "--preset", preset.string(), "--output", output.string()});
    }

    testsupport::TemporaryDirectory directory;
};

TEST_F(SarvexRender, RendersTheSequenceAndExitsZero) {
    const auto sequence = MakeTwoClipSequence(directory.Path());
    const auto output = directory.Path() / "movie.mov";
    const auto result =
        Render(sequence, ShippedPresetDirectory() / "prores-422-proxy-mov.json", output);

    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.err.find("encoding"), std::string::npos) << result.err;
    const auto probe = ProbeMedia(output);
    EXPECT_EQ(probe.videoCodecs, std::vector<std::string>{"prores"});
    EXPECT_EQ(probe.audioCodecs.size(), 1u);
    EXPECT_NEAR(probe.duration, sequence.Duration(), 2.0 / 25.0);
}

TEST_F(SarvexRender, ExitsOneNamingAMissingClipAndLeavesNoFile) {
    auto sequence = MakeTwoClipSequence(directory.Path());
    const auto missing = (directory.Path() / "missing.mp4").string();
    sequence.clips[0].path = missing;
    const auto output = directory.Path() / "movie.mp4";
    const auto result = Render(sequence, ShippedPresetDirectory() / "h264-mp4.json", output);

    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find(missing), std::string::npos) << result.err;
    EXPECT_FALSE(std::filesystem::exists(output));
}

TEST_F(SarvexRender, ExitsOneWhenTheOutputDoesNotSuitThePreset) {
    const auto output = directory.Path() / "movie.avi";
    const auto result = Render(MakeTwoClipSequence(directory.Path()),
                               ShippedPresetDirectory() / "h264-mp4.json", output);

    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find("movie.avi"), std::string::npos) << result.err;
    EXPECT_FALSE(std::filesystem::exists(output));
}

TEST_F(SarvexRender, PrintsTheFfmpegCommandThatMakesTheOutputWithoutRendering) {
    const auto sequence = MakeTwoClipSequence(directory.Path());
    const auto output = directory.Path() / "movie.mp4";
    const auto sequenceFile =
        directory.Write("sequence.json", sarvex::protocol::EncodeSequence(sequence));
    const auto printed = RunToEnd({SarvexProgram().string(), "render", "--print-command",
                                   "--sequence", sequenceFile.string(), "--preset",
                                   (ShippedPresetDirectory() / "h264-mp4.json").string(),
                                   "--output", output.string()});

    ASSERT_EQ(printed.exitCode, 0) << printed.err;
    EXPECT_FALSE(std::filesystem::exists(output));
    std::vector<std::string> command;
    for (std::size_t start = 0, end; (end = printed.out.find('\0', start)) != std::string::npos;
         start = end + 1) {
        command.push_back(printed.out.substr(start, end - start));
    }
    ASSERT_GE(command.size(), 2u) << printed.out;
    EXPECT_EQ(command.front(), "ffmpeg");
    EXPECT_EQ(command.back(), "file:" + output.string());

    // The printed command is the render itself: run as it is, it makes the sequence's file.
    const auto ran = RunToEnd(command);
    ASSERT_EQ(ran.exitCode, 0) << ran.err;
    const auto probe = ProbeMedia(output);
    EXPECT_EQ(probe.videoCodecs, std::vector<std::string>{"h264"});
    EXPECT_NEAR(probe.duration, sequence.Duration(), 2.0 / 25.0);
}

TEST_F(SarvexRender, ExitsOneOnAMalformedSequenceFile) {
    const auto sequenceFile = directory.Write("sequence.json", R"({"clips": []})");
    const auto result =
        RunToEnd({SarvexProgram().string(), "render", "--sequence", sequenceFile.string(),
                  "--preset", (ShippedPresetDirectory() / "h264-mp4.json").string(), "--output",
                  (directory.Path() / "x.mp4").string()});

    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find("no clips"), std::string::npos) << result.err;
}

TEST_F(SarvexRender, CtrlCCancelsExitsWith130AndLeavesNoFile) {
    // Large enough frames that the render is still going when the signal lands.
    auto sequence = MakeTwoClipSequence(directory.Path(), true);
    sequence.width = 1920;
    sequence.height = 1080;
    const auto sequenceFile =
        directory.Write("sequence.json", sarvex::protocol::EncodeSequence(sequence));
    const auto output = directory.Path() / "movie.mp4";
    Subprocess render(
        {SarvexProgram().string(), "render", "--sequence", sequenceFile.string(), "--preset",
         (ShippedPresetDirectory() / "h265-mp4.json").string(), "--output", output.string()},
        Subprocess::Piped::Errors);
    ASSERT_TRUE(render.AwaitLine("encoding", In(std::chrono::seconds(120))));

    render.Signal(SIGINT);
    const auto exitCode = render.AwaitExit(In(std::chrono::seconds(120)));

    ASSERT_TRUE(exitCode);
    EXPECT_EQ(*exitCode, 130);
    EXPECT_FALSE(std::filesystem::exists(output));
    EXPECT_EQ(DirectoryEntries(directory.Path()),
              (std::vector<std::string>{"a.mp4", "b.mp4", "sequence.json"}));
}

TEST(SarvexPresets, ListsTheShippedPresetsDefaultFirst) {
    const auto result = RunToEnd({SarvexProgram().string(), "presets"});

    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out.rfind("H.264 MP4\tmp4\t", 0), 0u) << result.out;
    EXPECT_NE(result.out.find("\tdefault\n"), std::string::npos);
    EXPECT_NE(result.out.find("VP9 WebM\twebm\t"), std::string::npos);
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 4);
}

}  // namespace
}  // namespace sarvextest
