#include <gtest/gtest.h>

#include "host/support/HostShareFixture.h"

namespace hosttest {
namespace {

namespace json = boost::json;

class HostShare : public HostShareFixture {};

TEST_F(HostShare, PrintsALinkWhosePageServesTheVideoAndStoresTheShareWithTheSequence) {
    StartSignedInWorld();
    WriteProject({{"Cut 1", Clip(3), 3}});

    const auto run = Share({"--sequence", "Cut 1"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const std::string link = LinkIn(run.out);
    ASSERT_FALSE(link.empty()) << run.out;
    EXPECT_NE(run.out.find("encoding"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("uploading"), std::string::npos) << run.out;

    const auto page = client.Get(link);
    ASSERT_EQ(page.status, 200);
    // The video's address as the page's <video> element names it.
    const auto mediaAt = page.body.find("/media/");
    ASSERT_NE(mediaAt, std::string::npos) << page.body;
    const auto start = page.body.rfind('"', mediaAt) + 1;
    const std::string media = page.body.substr(start, page.body.find('"', mediaAt) - start);
    ASSERT_EQ(media.rfind("/r/", 0), 0u) << media;
    const auto bytes = client.Get(Url(media), {{"Range", "bytes=0-99"}});
    EXPECT_EQ(bytes.status, 206);
    EXPECT_EQ(bytes.body.size(), 100u);
    EXPECT_EQ(bytes.Header("content-type"), "video/mp4");

    EXPECT_EQ(Stored("Cut 1", "ReviewLinkURL"), link);
    EXPECT_EQ(Stored("Cut 1", "UploadFolderGuid"), reviews);
    EXPECT_EQ(Stored("Cut 1", "UploadFolderParentProjGuid"), alpha);
    EXPECT_EQ(Stored("Cut 1", "UploadFolderPath"), "Studio/Editors/Alpha/Reviews");
    EXPECT_EQ(Stored("Cut 1", "AssetModifiedAfterShare"), "false");
    const auto preset = Stored("Cut 1", "SelectedEncoderPreset");
    ASSERT_TRUE(preset);
    EXPECT_NE(preset->find("\"preset_name\":\"H.264 MP4\""), std::string::npos) << *preset;
    const auto stack = Stored("Cut 1", "VersionStackGuid");
    ASSERT_TRUE(stack);
    const auto children = FolderChildren();
    ASSERT_EQ(children.size(), 1u);
    EXPECT_EQ(children[0].at("id").as_string(), *stack);
    EXPECT_EQ(children[0].at("type").as_string(), "version_stack");
    EXPECT_TRUE(CacheFiles().empty());
}

TEST_F(HostShare, AnEditedSequenceSharesAgainAsTheNextVersionBehindTheSameLink) {
    StartSignedInWorld();
    WriteProject({{"Cut 1", Clip(3), 3}});
    const auto first = Share({"--sequence", "Cut 1"});
    ASSERT_EQ(first.exitCode, 0) << first.err;

    // The edit: a shorter cut of the same clip.
    EditClipOut("Cut 1", 2);
    const auto second = Share({"--sequence", "Cut 1"});
    ASSERT_EQ(second.exitCode, 0) << second.err;
    EXPECT_EQ(LinkIn(second.out), LinkIn(first.out));
    const auto stack = Stored("Cut 1", "VersionStackGuid");
    ASSERT_TRUE(stack);
    EXPECT_EQ(ChildCount(*stack), 2u);
    EXPECT_EQ(LinkCount(), 1u);

    const auto page = client.Get(LinkIn(second.out));
    ASSERT_EQ(page.status, 200);
    EXPECT_NE(page.body.find("?item="), std::string::npos);
}

TEST_F(HostShare, ANewLinkIsASecondLink) {
    StartSignedInWorld();
    WriteProject({{"Cut 1", Clip(3), 3}});
    const auto first = Share({"--sequence", "Cut 1"});
    ASSERT_EQ(first.exitCode, 0) << first.err;
    const auto second = Share({"--sequence", "Cut 1", "--new-link", "--preset", "VP9 WebM"});
    ASSERT_EQ(second.exitCode, 0) << second.err;
    ASSERT_FALSE(LinkIn(second.out).empty());
    EXPECT_NE(LinkIn(second.out), LinkIn(first.out));
    EXPECT_EQ(LinkCount(), 2u);
    EXPECT_EQ(Stored("Cut 1", "ReviewLinkURL"), LinkIn(second.out));
    const auto preset = Stored("Cut 1", "SelectedEncoderPreset");
    ASSERT_TRUE(preset);
    EXPECT_NE(preset->find("\"file_extension\":\"webm\""), std::string::npos) << *preset;
}

TEST_F(HostShare, TheFolderMayBeTheProjectsRootFolderByItsName) {
    StartSignedInWorld();
    WriteProject({{"Cut 1", Clip(2), 2}});
    // The root folder is named after its project.
    const auto run =
        ChildProcess::Run({Executable(), "share", "--project", ProjectPath().string(), "--sequence",
                           "Cut 1", "--folder", "Studio/Editors/Alpha/Alpha"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(Stored("Cut 1", "UploadFolderGuid"), root);
    EXPECT_EQ(Stored("Cut 1", "UploadFolderPath"), "Studio/Editors/Alpha");
    EXPECT_EQ(ChildCount(root), 2u);  // "Reviews" and the new version stack

    const auto project =
        ChildProcess::Run({Executable(), "share", "--project", ProjectPath().string(), "--sequence",
                           "Cut 1", "--folder", "Studio/Editors/Alpha"});
    EXPECT_EQ(project.exitCode, 1);
    EXPECT_NE(project.err.find("--folder needs ACCOUNT/WORKSPACE/PROJECT/FOLDER"),
              std::string::npos)
        << project.err;
}

}  // namespace
}  // namespace hosttest
