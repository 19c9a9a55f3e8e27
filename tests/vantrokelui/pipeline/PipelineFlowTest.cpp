#include <gtest/gtest.h>

#include <boost/json.hpp>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include <kelcore/string/String.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareModel.h>

#include "SharePipelineFixture.h"
#include "vantrokelui/support/TestClip.h"

namespace vantrokeluitest {
namespace {

namespace model = vantrokelui::model;
using kelcore::string::UTF16toStdString;
using vantrokelui::EncodingStatus;

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string Text(const boost::json::value& value) {
    return value.is_string() ? std::string(value.as_string()) : std::string();
}

class PipelineFlowTest : public SharePipelineFixture {
protected:
    // The four values a finished share stores; empty strings for the missing ones.
    struct Shared {
        std::string asset, link, url, stack;
    };
    Shared SharedValues() {
        const auto values = host->StoredValues();
        auto get = [&](kelcore::string::string_view key) {
            const auto found = values.find(KeyText(key));
            return found == values.end() ? std::string() : found->second;
        };
        return {get(model::kUploadedAssetGuidKey), get(model::kReviewLinkGuidKey),
                get(model::kReviewLinkURLKey), get(model::kVersionStackGuidKey)};
    }

    // The values stored besides the four of a share.
    std::map<std::string, std::string> OtherValues() {
        auto values = host->StoredValues();
        for (const auto key : {model::kUploadedAssetGuidKey, model::kReviewLinkGuidKey,
                               model::kReviewLinkURLKey, model::kVersionStackGuidKey}) {
            values.erase(KeyText(key));
        }
        return values;
    }

    boost::json::array ProjectLinks() {
        const auto links = ApiGet("/v2/projects/" + alpha + "/review_links");
        return links.is_array() ? links.as_array() : boost::json::array();
    }
};

TEST_F(PipelineFlowTest, AFirstShareMakesALinkAndAVersionStackAndEndsOnTheLink) {
    StartSignedInWorld();
    host->Properties().SetActiveAssetDirty(true);
    const auto before = host->StoredValues();

    const auto run = host->RunToLink();

    ASSERT_TRUE(run.finished) << "the share never ended";
    ASSERT_EQ(run.view, ViewID::CopyLinkSection);
    EXPECT_EQ(run.newToasts, 0u);
    EXPECT_EQ(host->Views(), (std::vector<ViewID>{ViewID::ReviewInVantro, ViewID::EncodingQueued,
                                                  ViewID::CopyLinkSection}));
    // The four values, and nothing else changed.
    const Shared shared = SharedValues();
    for (const std::string& guid : {shared.asset, shared.link, shared.stack}) {
        EXPECT_FALSE(Guid(guid).IsNil()) << "a stored Guid is missing or nil: '" << guid << "'";
    }
    EXPECT_EQ(shared.url.rfind(Url("/r/"), 0), 0u) << shared.url;
    EXPECT_EQ(OtherValues(), before);
    EXPECT_EQ(UTF16toStdString(host->Properties().GetReviewLinkURL()), shared.url);
    EXPECT_FALSE(host->Properties().GetActiveAssetDirty());
    EXPECT_EQ(host->Properties().GetEncodingStatus(), EncodingStatus::UploadDone);
    // The encoder was asked for the sequence's file in the cache, with the selected preset.
    const auto jobs = host->Encoder().Jobs();
    ASSERT_EQ(jobs.size(), 1u);
    EXPECT_EQ(std::filesystem::path(UTF16toStdString(jobs[0].outputFilePath)),
              CacheDir() / "Cut 1.mp4");
    EXPECT_EQ(UTF16toStdString(jobs[0].presetPath), "/presets/h264-match-source.epr");
    EXPECT_EQ(CacheFiles(), std::vector<std::filesystem::path>()) << "the temporary file stayed";
    EXPECT_TRUE(AwaitJobGone(jobs[0].jobID)) << "the finished job stayed filed";
    EXPECT_FALSE(model::HasActiveShareJobs());

    // On the server: the link holds the stack, whose one version is the uploaded clip.
    const auto link = ApiGet("/v2/review_links/" + shared.link).as_object();
    EXPECT_EQ(Text(link.at("url")), shared.url);
    EXPECT_EQ(Text(link.at("name")), "Cut 1.mp4");
    EXPECT_EQ(Text(link.at("project_id")), alpha);
    const auto& items = link.at("items").as_array();
    ASSERT_EQ(items.size(), 1u);
    const auto& item = items[0].as_object();
    EXPECT_EQ(Text(item.at("asset_id")), shared.asset);
    EXPECT_EQ(Text(item.at("version_stack_id")), shared.stack);
    EXPECT_EQ(item.at("version_count").as_int64(), 1);
    EXPECT_EQ(Text(item.at("current").as_object().at("id")), shared.asset);
    const auto stack = ApiGet("/v2/assets/" + shared.stack).as_object();
    EXPECT_EQ(Text(stack.at("type")), "version_stack");
    EXPECT_EQ(Text(stack.at("parent_id")), folder);
    const auto versions = ApiGet("/v2/assets/" + shared.stack + "/children").as_array();
    ASSERT_EQ(versions.size(), 1u);
    EXPECT_EQ(Text(versions[0].at("id")), shared.asset);
    const auto content =
        client.Get(Url("/v2/assets/" + shared.asset + "/content"), testsupport::Bearer(Token()));
    EXPECT_EQ(content.status, 200);
    EXPECT_TRUE(content.body == ReadFile(vantrokelui::model::testing::TestClip::Path()))
        << "the uploaded bytes are not the encoder's file (" << content.body.size() << " bytes)";
}

TEST_F(PipelineFlowTest, AnUpdateUploadsTheNextVersionIntoTheSameStackAndLink) {
    StartSignedInWorld();
    ASSERT_EQ(host->RunToLink().view, ViewID::CopyLinkSection);
    const Shared first = SharedValues();
    const auto otherValues = OtherValues();

    const auto run = host->RunToLink();

    ASSERT_TRUE(run.finished);
    ASSERT_EQ(run.view, ViewID::CopyLinkSection);
    EXPECT_EQ(run.newToasts, 0u);
    const Shared second = SharedValues();
    EXPECT_EQ(second.link, first.link);
    EXPECT_EQ(second.url, first.url);
    EXPECT_EQ(second.stack, first.stack);
    EXPECT_NE(second.asset, first.asset);
    EXPECT_FALSE(Guid(second.asset).IsNil());
    EXPECT_EQ(OtherValues(), otherValues);
    EXPECT_EQ(host->Views(), (std::vector<ViewID>{ViewID::ReviewInVantro, ViewID::EncodingQueued,
                                                  ViewID::CopyLinkSection, ViewID::EncodingQueued,
                                                  ViewID::CopyLinkSection}));
    EXPECT_EQ(CacheFiles(), std::vector<std::filesystem::path>());

    // One link in the project, one item in it; the stack has both versions, the newest shown.
    EXPECT_EQ(ProjectLinks().size(), 1u);
    const auto versions = ApiGet("/v2/assets/" + first.stack + "/children").as_array();
    std::set<std::string> versionIDs;
    for (const auto& version : versions) {
        versionIDs.insert(Text(version.at("id")));
    }
    EXPECT_EQ(versionIDs, (std::set<std::string>{first.asset, second.asset}));
    EXPECT_EQ(ApiGet("/v2/assets/" + second.asset).at("version").as_int64(), 2);
    const auto link = ApiGet("/v2/review_links/" + first.link).as_object();
    const auto& items = link.at("items").as_array();
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].at("version_count").as_int64(), 2);
    EXPECT_EQ(Text(items[0].at("current").at("id")), second.asset);

    // The review page at the stored URL plays the new version.
    const auto page = PageGet(second.url);
    ASSERT_EQ(page.status, 200);
    EXPECT_NE(page.body.find("data-asset-id=\"" + second.asset + "\" data-version=\"2\""),
              std::string::npos)
        << page.body;
    const std::string media = "/media/" + second.asset;
    const auto src = page.body.find(media);
    ASSERT_NE(src, std::string::npos) << page.body;
    const auto start = page.body.rfind('"', src) + 1;
    const auto played = PageGet(Url(page.body.substr(start, src + media.size() - start)));
    EXPECT_EQ(played.status, 200);
    EXPECT_EQ(played.body.size(),
              std::filesystem::file_size(vantrokelui::model::testing::TestClip::Path()));
}

TEST_F(PipelineFlowTest, NewLinkModeRemovesTheOldValuesFirstAndMakesANewLinkAndStack) {
    StartSignedInWorld();
    ASSERT_EQ(host->RunToLink().view, ViewID::CopyLinkSection);
    const Shared first = SharedValues();
    const auto otherValues = OtherValues();
    const std::size_t clearedBefore = host->Sequences().ClearedKeys().size();
    host->Properties().SetCreateNewLinkMode(true);

    const auto run = host->RunToLink();

    ASSERT_TRUE(run.finished);
    ASSERT_EQ(run.view, ViewID::CopyLinkSection);
    const auto cleared = host->Sequences().ClearedKeys();
    EXPECT_EQ(
        std::vector<kelcore::string::string>(
            cleared.begin() + static_cast<std::ptrdiff_t>(clearedBefore), cleared.end()),
        (std::vector<kelcore::string::string>{kelcore::string::string(model::kUploadedAssetGuidKey),
                                              kelcore::string::string(model::kVersionStackGuidKey),
                                              kelcore::string::string(model::kReviewLinkGuidKey),
                                              kelcore::string::string(model::kReviewLinkURLKey)}));
    EXPECT_EQ(host->FolderWrites(), 1) << "the folder was not written anew after the removal";
    const Shared second = SharedValues();
    EXPECT_NE(second.link, first.link);
    EXPECT_NE(second.url, first.url);
    EXPECT_NE(second.stack, first.stack);
    EXPECT_NE(second.asset, first.asset);
    for (const std::string& guid : {second.asset, second.link, second.stack}) {
        EXPECT_FALSE(Guid(guid).IsNil());
    }
    EXPECT_EQ(OtherValues(), otherValues);
    EXPECT_EQ(UTF16toStdString(host->Properties().GetReviewLinkURL()), second.url);
    EXPECT_EQ(CacheFiles(), std::vector<std::filesystem::path>());

    // Two links and two stacks now; each link shows its own share.
    EXPECT_EQ(ProjectLinks().size(), 2u);
    EXPECT_EQ(FolderChildren().size(), 2u);
    const auto newLink = ApiGet("/v2/review_links/" + second.link).as_object();
    ASSERT_EQ(newLink.at("items").as_array().size(), 1u);
    const auto& newItem = newLink.at("items").as_array()[0];
    EXPECT_EQ(Text(newItem.at("version_stack_id")), second.stack);
    EXPECT_EQ(newItem.at("version_count").as_int64(), 1);
    EXPECT_EQ(Text(newItem.at("current").at("id")), second.asset);
    const auto oldLink = ApiGet("/v2/review_links/" + first.link).as_object();
    ASSERT_EQ(oldLink.at("items").as_array().size(), 1u);
    EXPECT_EQ(Text(oldLink.at("items").as_array()[0].at("current").at("id")), first.asset);
}

TEST_F(PipelineFlowTest, ARenderOfSeveralPartsArrivesWholeAndItsProgressEndsAtTheWhole) {
    StartSignedInWorld();
    const std::uint64_t size = 20 * 1024 * 1024 + 3;  // three parts, the last one short
    host->Encoder().RenderBytes(size);
    std::vector<double> progress;
    const auto binding = host->Properties().AddEncodingProgressBinding(
        [&](double fraction) { progress.push_back(fraction); });

    const auto run = host->RunToLink();

    ASSERT_EQ(run.view, ViewID::CopyLinkSection);
    host->Pump();
    EXPECT_DOUBLE_EQ(host->Properties().GetEncodingProgress(), 1.0);
    EXPECT_DOUBLE_EQ(host->Properties().GetUploadingSpeed(), 0.0);
    EXPECT_EQ(host->Properties().GetEncodingStatus(), EncodingStatus::UploadDone);
    ASSERT_FALSE(progress.empty());
    EXPECT_DOUBLE_EQ(progress.back(), 1.0);
    for (const double fraction : progress) {
        EXPECT_GE(fraction, 0.0);
        EXPECT_LE(fraction, 1.0);
    }
    const Shared shared = SharedValues();
    const auto asset = ApiGet("/v2/assets/" + shared.asset).as_object();
    EXPECT_EQ(asset.at("filesize").as_int64(), static_cast<std::int64_t>(size));
    EXPECT_EQ(Text(asset.at("parent_id")), shared.stack);
    EXPECT_EQ(CacheFiles(), std::vector<std::filesystem::path>());
}

}  // namespace
}  // namespace vantrokeluitest
