#include <fstream>

#include <gtest/gtest.h>

#include "host/support/HostShareFixture.h"

namespace hosttest {
namespace {

namespace json = boost::json;

class HostCorruptSettings : public HostShareFixture {};

TEST_F(HostCorruptSettings, ASequenceWithUnreadableStoredValuesStillSharesAndKeepsTheRest) {
    StartSignedInWorld();
    WriteProject({{"Cut 1", Clip(2), 2}});
    json::object document = ReadProject();
    json::object& settings =
        document["sequences"].as_array()[0].as_object()["settings"].as_object();
    const std::string prefix = "TSLY.VantroNative.ShareForReview.";
    // JSON but not an object: the library cannot fall back from it on its own.
    settings[prefix + "SelectedEncoderPreset"] = "[1, 2]";
    settings[prefix + "UploadFolderGuid"] = 42;
    settings[prefix + "ReviewLinkGuid"] = "not a guid";
    settings[prefix + "AssetModifiedAfterShare"] = json::array{true};
    settings["Editor.Note"] = "keep me";
    std::ofstream(ProjectPath()) << json::serialize(document);

    const auto run = Share({"--sequence", "Cut 1"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    ASSERT_FALSE(LinkIn(run.out).empty()) << run.out;

    const json::object stored = StoredSettings("Cut 1");
    EXPECT_EQ(stored.at("Editor.Note"), json::value("keep me"));
    EXPECT_EQ(stored.at(prefix + "UploadFolderGuid"), json::value(reviews));
    EXPECT_EQ(stored.at(prefix + "ReviewLinkURL"), json::value(LinkIn(run.out)));
    const auto preset = Stored("Cut 1", "SelectedEncoderPreset");
    ASSERT_TRUE(preset);
    EXPECT_NE(preset->find("\"preset_name\":\"H.264 MP4\""), std::string::npos) << *preset;
    EXPECT_EQ(FolderChildren().size(), 1u);
}

}  // namespace
}  // namespace hosttest
