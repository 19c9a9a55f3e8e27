#include "Preset.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "encoder/support/Subprocess.h"
#include "support/TemporaryDirectory.h"

namespace {

using sarvex::Preset;
using sarvex::PresetError;

// The message a preset file with `text` is refused with (the file is written first).
std::string Refusal(const testsupport::TemporaryDirectory& directory, const std::string& text) {
    const auto path = directory.Write("preset.json", text);
    try {
        Preset::Load(path);
    } catch (const PresetError& failure) {
        return failure.what();
    }
    return "(accepted)";
}

TEST(Preset, EachShippedPresetLoads) {
    const auto directory = sarvextest::ShippedPresetDirectory();
    for (const auto* file :
         {"h264-mp4.json", "h265-mp4.json", "prores-422-proxy-mov.json", "vp9-webm.json"}) {
        const auto preset = Preset::Load(directory / file);
        EXPECT_FALSE(preset.Name().empty()) << file;
        EXPECT_FALSE(preset.Arguments().empty()) << file;
        EXPECT_EQ(std::string(file).ends_with(preset.Extension() + ".json"), true) << file;
    }
}

TEST(Preset, TheDirectoryListsTheOneDefaultFirst) {
    std::vector<std::string> problems;
    const auto presets = Preset::LoadDirectory(sarvextest::ShippedPresetDirectory(), problems);

    EXPECT_TRUE(problems.empty());
    ASSERT_EQ(presets.size(), 4u);
    EXPECT_TRUE(presets.front().IsDefault());
    EXPECT_EQ(presets.front().Name(), "H.264 MP4");
    EXPECT_EQ(std::count_if(presets.begin(), presets.end(),
                            [](const Preset& preset) { return preset.IsDefault(); }),
              1);
}

TEST(Preset, TheDirectoryReportsFilesItCannotUse) {
    testsupport::TemporaryDirectory directory;
    directory.Write("good.json", R"({"name":"Good","extension":"mp4","args":[]})");
    directory.Write("bad.json", R"({"name":"Bad"})");
    directory.Write("notes.txt", "not a preset");
    std::vector<std::string> problems;
    const auto presets = Preset::LoadDirectory(directory.Path(), problems);

    ASSERT_EQ(presets.size(), 1u);
    EXPECT_EQ(presets.front().Name(), "Good");
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_NE(problems.front().find("bad.json"), std::string::npos) << problems.front();
}

TEST(Preset, AMissingFileIsRefusedByName) {
    testsupport::TemporaryDirectory directory;
    const auto path = directory.Path() / "absent.json";
    try {
        Preset::Load(path);
        FAIL() << "loaded a file that is not there";
    } catch (const PresetError& failure) {
        EXPECT_NE(std::string(failure.what()).find(path.string()), std::string::npos);
        EXPECT_NE(std::string(failure.what()).find("cannot be read"), std::string::npos);
    }
}

TEST(Preset, EachFaultIsNamedWithTheFile) {
    testsupport::TemporaryDirectory directory;
    const auto file = (directory.Path() / "preset.json").string();
    const std::vector<std::pair<std::string, std::string>> cases{
        {"{not json", "is not JSON"},
        {R"(["-c:v"])", "is not a JSON object"},
        {R"({"extension":"mp4","args":[]})", "has no \"name\""},
        {R"({"name":7,"extension":"mp4","args":[]})", "\"name\" is not a string"},
        {R"({"name":"","extension":"mp4","args":[]})", "\"name\" is empty"},
        {R"({"name":"A","args":[]})", "has no \"extension\""},
        {R"({"name":"A","extension":"","args":[]})", "\"extension\" is empty"},
        {R"({"name":"A","extension":"mp4"})", "has no \"args\""},
        {R"({"name":"A","extension":"mp4","args":"-c:v libx264"})", "\"args\" is not an array"},
        {R"({"name":"A","extension":"mp4","args":["-crf",20]})", "other than strings"},
        {R"({"name":"A","extension":"mp4","args":["-i","/x.mp4"]})", "may not set -i"},
        {R"({"name":"A","extension":"mp4","args":["-y"]})", "may not set -y"},
        {R"({"name":"A","extension":"mp4","args":["-progress","x"]})", "may not set -progress"},
        {R"({"name":"A","extension":"mp4","args":["-filter_complex","x"]})",
         "may not set -filter_complex"},
        {R"({"name":"A","extension":"mp4","args":[],"default":"yes"})",
         "\"default\" is not true or false"},
    };
    for (const auto& [text, fault] : cases) {
        const auto message = Refusal(directory, text);
        EXPECT_NE(message.find(fault), std::string::npos) << text << " gave: " << message;
        EXPECT_NE(message.find(file), std::string::npos) << text << " gave: " << message;
    }
}

TEST(Preset, TheOutputMustCarryThePresetsExtension) {
    testsupport::TemporaryDirectory directory;
    const auto preset = Preset::Load(
        directory.Write("p.json", R"({"name":"P","extension":"mov","args":["-c:v","prores_ks"]})"));

    EXPECT_NO_THROW(preset.CheckOutputPath("/tmp/out.mov"));
    EXPECT_NO_THROW(preset.CheckOutputPath("/tmp/OUT.MOV"));
    EXPECT_THROW(preset.CheckOutputPath("/tmp/out.mp4"), PresetError);
    EXPECT_THROW(preset.CheckOutputPath("/tmp/out"), PresetError);
    try {
        preset.CheckOutputPath("/tmp/out.mp4");
    } catch (const PresetError& failure) {
        EXPECT_NE(std::string(failure.what()).find("/tmp/out.mp4"), std::string::npos);
        EXPECT_NE(std::string(failure.what()).find(".mov"), std::string::npos);
    }
}

}  // namespace
