#include <vantrokelui/model/SequenceSettings.h>

#include <vector>

#include <gtest/gtest.h>

#include <kelcore/serialization/JSON.h>

#include "vantrokelui/support/FakeSequenceHost.h"

namespace vantrokelui::model {
namespace {

using kelcore::string::string;
using kelcore::utility::Guid;
using testing::FakeSequenceHost;
using testing::U16;

const ProcessingGuids kSequence{Guid(0x10, 1), Guid(0x20, 2)};
constexpr kelcore::string::string_view kKey = u"TSLY.VantroNative.ShareForReview.Test";

class SequenceSettings : public ::testing::Test {
protected:
    std::shared_ptr<FakeSequenceHost> host = FakeSequenceHost::Create();
    GetSequenceValueFunction get = host->GetSequenceValueFn();
    SetSequenceValueFunction set = host->SetSequenceValueFn();
    ClearSequenceValueFunction clear = host->ClearSequenceValueFn();
    const Guid project = kSequence.projectGuid;
    const Guid sequence = kSequence.sequenceGuid;
};

TEST_F(SequenceSettings, KeysAreTheNineStoredNamesInTableOrder) {
    const std::vector<string> expected = {
        U16("TSLY.VantroNative.ShareForReview.UploadedAssetGuid"),
        U16("TSLY.VantroNative.ShareForReview.UploadFolderGuid"),
        U16("TSLY.VantroNative.ShareForReview.UploadFolderPath"),
        U16("TSLY.VantroNative.ShareForReview.UploadFolderParentProjGuid"),
        U16("TSLY.VantroNative.ShareForReview.VersionStackGuid"),
        U16("TSLY.VantroNative.ShareForReview.ReviewLinkGuid"),
        U16("TSLY.VantroNative.ShareForReview.ReviewLinkURL"),
        U16("TSLY.VantroNative.ShareForReview.AssetModifiedAfterShare"),
        U16("TSLY.VantroNative.ShareForReview.SelectedEncoderPreset"),
    };
    const std::vector<string> named = {
        string(kUploadedAssetGuidKey),    string(kUploadFolderGuidKey),
        string(kUploadFolderPathKey),     string(kUploadFolderParentProjGuidKey),
        string(kVersionStackGuidKey),     string(kReviewLinkGuidKey),
        string(kReviewLinkURLKey),        string(kAssetModifiedAfterShareKey),
        string(kSelectedEncoderPresetKey)};
    const std::vector<string> all(kAllSequenceSettingKeys.begin(), kAllSequenceSettingKeys.end());
    EXPECT_EQ(named, expected);
    EXPECT_EQ(all, expected);
}

TEST_F(SequenceSettings, GuidReadsBackWhatWasWrittenAsItsText) {
    const Guid folder = Guid::CreateUnique();
    EXPECT_TRUE(SetSequenceGuid(set, project, sequence, kKey, folder));
    EXPECT_EQ(host->Find(kSequence, kKey), folder.AsString());
    Guid read;
    EXPECT_TRUE(GetSequenceGuid(get, project, sequence, kKey, read));
    EXPECT_EQ(read, folder);
}

TEST_F(SequenceSettings, MissingGuidIsFalseAndNil) {
    Guid read(7, 7);
    EXPECT_FALSE(GetSequenceGuid(get, project, sequence, kKey, read));
    EXPECT_TRUE(read.IsNil());
}

TEST_F(SequenceSettings, MalformedGuidCountsAsPresentAndReadsAsNil) {
    host->Put(kSequence, kKey, u"not-a-guid");
    Guid read(7, 7);
    EXPECT_TRUE(GetSequenceGuid(get, project, sequence, kKey, read));
    EXPECT_TRUE(read.IsNil());
}

TEST_F(SequenceSettings, StringReadsBackAndMissingIsFalseAndEmpty) {
    EXPECT_TRUE(SetSequenceString(set, project, sequence, kKey, u"/Team/Dailies"));
    string read;
    EXPECT_TRUE(GetSequenceString(get, project, sequence, kKey, read));
    EXPECT_EQ(read, U16("/Team/Dailies"));

    string other = U16("left over");
    EXPECT_FALSE(GetSequenceString(get, project, sequence, kReviewLinkURLKey, other));
    EXPECT_TRUE(other.empty());
}

TEST_F(SequenceSettings, AnEmptyStoredStringIsPresent) {
    host->Put(kSequence, kKey, u"");
    string read = U16("x");
    EXPECT_TRUE(GetSequenceString(get, project, sequence, kKey, read));
    EXPECT_TRUE(read.empty());
}

TEST_F(SequenceSettings, BoolIsWrittenAsTheLiteralsTrueAndFalse) {
    EXPECT_TRUE(SetSequenceBool(set, project, sequence, kKey, true));
    EXPECT_EQ(host->Find(kSequence, kKey), U16("true"));
    EXPECT_TRUE(SetSequenceBool(set, project, sequence, kKey, false));
    EXPECT_EQ(host->Find(kSequence, kKey), U16("false"));
}

TEST_F(SequenceSettings, BoolIsTrueOnlyForTheExactTextTrue) {
    bool read = false;
    host->Put(kSequence, kKey, u"true");
    EXPECT_TRUE(GetSequenceBool(get, project, sequence, kKey, read));
    EXPECT_TRUE(read);

    host->Put(kSequence, kKey, u"false");
    EXPECT_TRUE(GetSequenceBool(get, project, sequence, kKey, read));
    EXPECT_FALSE(read);
}

TEST_F(SequenceSettings, UpperCaseTrueReadsAsPresentAndFalse) {
    host->Put(kSequence, kAssetModifiedAfterShareKey, u"TRUE");
    bool read = true;
    EXPECT_TRUE(GetSequenceBool(get, project, sequence, kAssetModifiedAfterShareKey, read));
    EXPECT_FALSE(read);
}

TEST_F(SequenceSettings, MissingBoolIsFalseAndFalse) {
    bool read = true;
    EXPECT_FALSE(GetSequenceBool(get, project, sequence, kKey, read));
    EXPECT_FALSE(read);
}

TEST_F(SequenceSettings, WritersAnswerWhatTheHostAnswered) {
    host->SetWriteResult(false);
    EXPECT_FALSE(SetSequenceString(set, project, sequence, kKey, u"a"));
    EXPECT_FALSE(SetSequenceGuid(set, project, sequence, kKey, Guid(1, 1)));
    EXPECT_FALSE(SetSequenceBool(set, project, sequence, kKey, true));
    EXPECT_FALSE(RemoveSequenceValue(clear, project, sequence, kKey));
    host->SetWriteResult(true);
    EXPECT_TRUE(RemoveSequenceValue(clear, project, sequence, kKey));
}

TEST_F(SequenceSettings, RemoveTakesTheValueAway) {
    host->Put(kSequence, kKey, u"x");
    RemoveSequenceValue(clear, project, sequence, kKey);
    string read;
    EXPECT_FALSE(GetSequenceString(get, project, sequence, kKey, read));
}

TEST_F(SequenceSettings, ClearAllRemovesTheNineKeysInTableOrderAndNothingElse) {
    for (const auto key : kAllSequenceSettingKeys) {
        host->Put(kSequence, key, u"v");
    }
    host->Put(kSequence, kKey, u"kept");
    ClearAllSequenceSettings(clear, project, sequence);

    const std::vector<string> expected(kAllSequenceSettingKeys.begin(),
                                       kAllSequenceSettingKeys.end());
    EXPECT_EQ(host->ClearedKeys(), expected);
    EXPECT_EQ(host->ValueCount(), 1u);
    EXPECT_EQ(host->Find(kSequence, kKey), U16("kept"));
}

TEST_F(SequenceSettings, ValuesBelongToProjectAndSequenceTogether) {
    const ProcessingGuids otherProject{Guid(0x11, 1), kSequence.sequenceGuid};
    SetSequenceString(set, project, sequence, kReviewLinkURLKey, u"https://a");
    string read;
    EXPECT_FALSE(GetSequenceString(get, otherProject.projectGuid, otherProject.sequenceGuid,
                                   kReviewLinkURLKey, read));

    SetSequenceString(set, otherProject.projectGuid, otherProject.sequenceGuid, kReviewLinkURLKey,
                      u"https://b");
    ClearAllSequenceSettings(clear, otherProject.projectGuid, otherProject.sequenceGuid);
    EXPECT_TRUE(GetSequenceString(get, project, sequence, kReviewLinkURLKey, read));
    EXPECT_EQ(read, U16("https://a"));
}

TEST(EncoderPresetJSON, WritesTheThreeMembersInOrder) {
    const EncoderPresetAttributes preset{U16("H.264 High"), U16("/presets/h264.epr"), U16("mp4")};
    EXPECT_EQ(FormatEncoderPresetJSON(preset),
              U16(R"({"preset_name":"H.264 High","preset_path":"/presets/h264.epr",)"
                  R"("file_extension":"mp4"})"));
}

TEST(EncoderPresetJSON, EscapesTextAndKeepsNonASCIIReadable) {
    const EncoderPresetAttributes preset{U16("Vidéo \"4K\" \\ 日本"), U16(""), U16("mov")};
    const std::string text = kelcore::string::UTF16toStdString(FormatEncoderPresetJSON(preset));
    const std::any document = kelcore::serialization::JSONParse(text);
    EXPECT_EQ(kelcore::serialization::GetVariantInObject<std::string>(document, "preset_name"),
              "Vidéo \"4K\" \\ 日本");
    EXPECT_EQ(kelcore::serialization::GetVariantInObject<std::string>(document, "preset_path"), "");
    EXPECT_EQ(std::any_cast<const kelcore::serialization::JSONObject&>(document).size(), 3u);
}

}  // namespace
}  // namespace vantrokelui::model
