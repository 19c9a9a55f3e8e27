// What the view model reads from and writes to the active sequence, and the setters whose rules
// touch it (presets, the modified mark, a new link).

#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/nodes/VantroAccount.h>

#include "ViewModelFixture.h"

namespace vantrokelui::viewmodel::testing {
namespace {

using kelcore::string::string;

class ViewModelSequenceTest : public ViewModelFixture {
protected:
    static std::shared_ptr<EncoderPresetModel> Preset(const char16_t* name, const char16_t* path,
                                                      const char16_t* extension) {
        auto preset = EncoderPresetModel::Create();
        preset->SetPresetName(name);
        preset->SetPresetPath(path);
        preset->SetExtension(extension);
        return preset;
    }
};

TEST_F(ViewModelSequenceTest, AStoredFolderThatIsNotInTheTreeLeavesNoSelection) {
    const LocalTree tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    tree.user->SetSelection(tree.folder);
    tree.user->SetProposedSelection(tree.folder);
    Store(model::kUploadFolderGuidKey, Guid::CreateUnique().AsString());
    viewModel->ReadSettingsFromCurrentSequence();
    EXPECT_EQ(tree.user->GetSelection(), nullptr);
    EXPECT_EQ(tree.user->GetProposedSelection(), nullptr);
}

TEST_F(ViewModelSequenceTest, AStoredFolderInTheTreeBecomesTheSelection) {
    const LocalTree tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    tree.user->SetProposedSelection(tree.root);
    Store(model::kUploadFolderGuidKey, tree.folder->GetID().AsString());
    viewModel->ReadSettingsFromCurrentSequence();
    EXPECT_EQ(tree.user->GetSelection(), tree.folder);
    EXPECT_EQ(tree.user->GetSelectionPath(), u"Studio/Editors/Alpha/Reviews");
    EXPECT_EQ(tree.user->GetProposedSelection(), nullptr);
}

TEST_F(ViewModelSequenceTest, AStoredIdOfANodeThatIsNoFolderLeavesNoSelection) {
    const LocalTree tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    tree.user->SetSelection(tree.folder);
    Store(model::kUploadFolderGuidKey, tree.project->GetID().AsString());
    viewModel->ReadSettingsFromCurrentSequence();
    EXPECT_EQ(tree.user->GetSelection(), nullptr);
}

TEST_F(ViewModelSequenceTest, NoStoredLinkEmptiesTheLink) {
    viewModel->SetReviewLinkURL(u"https://review.example/l/old");
    viewModel->ReadSettingsFromCurrentSequence();
    EXPECT_EQ(viewModel->GetReviewLinkURL(), u"");
}

TEST_F(ViewModelSequenceTest, AStoredLinkWinsOverTheJobsLink) {
    Store(model::kReviewLinkURLKey, u"https://review.example/l/stored");
    AddJob(EncodingStatus::UploadDone, u"https://review.example/l/job");
    model::SetCurrentActiveSequenceAndProperties();
    ASSERT_EQ(viewModel->GetReviewLinkURL(), u"https://review.example/l/job");
    viewModel->ReadSettingsFromCurrentSequence();
    EXPECT_EQ(viewModel->GetReviewLinkURL(), u"https://review.example/l/stored");
}

TEST_F(ViewModelSequenceTest, WithoutAStoredLinkTheJobsLinkIsUsedAndNotWrittenBack) {
    AddJob(EncodingStatus::UploadDone, u"https://review.example/l/job");
    // The pipeline learns the active sequence's job first, as the open does.
    model::SetCurrentActiveSequenceAndProperties();
    viewModel->SetReviewLinkURL(u"");
    viewModel->ReadSettingsFromCurrentSequence();
    EXPECT_EQ(viewModel->GetReviewLinkURL(), u"https://review.example/l/job");
    EXPECT_EQ(Stored(model::kReviewLinkURLKey), std::nullopt);
    EXPECT_EQ(host->ValueCount(), 0u);
}

TEST_F(ViewModelSequenceTest, TheStoredModifiedMarkIsRestoredAndAMissingOneKeepsTheProperty) {
    viewModel->SetActiveAssetDirty(true);
    viewModel->ReadSettingsFromCurrentSequence();
    EXPECT_TRUE(viewModel->GetActiveAssetDirty());

    Store(model::kAssetModifiedAfterShareKey, u"false");
    viewModel->ReadSettingsFromCurrentSequence();
    EXPECT_FALSE(viewModel->GetActiveAssetDirty());

    Store(model::kAssetModifiedAfterShareKey, u"true");
    viewModel->ReadSettingsFromCurrentSequence();
    EXPECT_TRUE(viewModel->GetActiveAssetDirty());

    Store(model::kAssetModifiedAfterShareKey, u"True");  // not the literal: false
    viewModel->ReadSettingsFromCurrentSequence();
    EXPECT_FALSE(viewModel->GetActiveAssetDirty());
}

TEST_F(ViewModelSequenceTest, TheStoredPresetBecomesTheSelectedPreset) {
    Store(
        model::kSelectedEncoderPresetKey,
        uR"({"preset_name":"H.264 High","preset_path":"/presets/high.epr","file_extension":"mp4"})");
    viewModel->ReadSettingsFromCurrentSequence();
    const auto preset = viewModel->GetSelectedEncoderPreset();
    ASSERT_NE(preset, nullptr);
    EXPECT_EQ(preset->GetPresetName(), u"H.264 High");
    EXPECT_EQ(preset->GetPresetPath(), u"/presets/high.epr");
    EXPECT_EQ(preset->GetExtension(), u"mp4");
}

TEST_F(ViewModelSequenceTest, WithoutAStoredPresetTheSelectionStays) {
    const auto chosen = Preset(u"A", u"/a.epr", u"mov");
    viewModel->SetSelectedEncoderPreset(chosen);
    viewModel->ReadSettingsFromCurrentSequence();
    EXPECT_EQ(viewModel->GetSelectedEncoderPreset(), chosen);
    Store(model::kSelectedEncoderPresetKey, u"not json");
    viewModel->ReadSettingsFromCurrentSequence();
    EXPECT_EQ(viewModel->GetSelectedEncoderPreset(), chosen);
}

TEST_F(ViewModelSequenceTest, WritingFolderSettingsWithoutASelectionWritesNothing) {
    viewModel->WriteFolderSettingsToCurrentSequence();
    EXPECT_EQ(host->ValueCount(), 0u);
    EXPECT_EQ(host->GetActiveCalls(), 0);
}

TEST_F(ViewModelSequenceTest, WritingFolderSettingsStoresFolderProjectAndPath) {
    const LocalTree tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    tree.user->SetSelection(tree.folder);
    viewModel->WriteFolderSettingsToCurrentSequence();
    EXPECT_EQ(Stored(model::kUploadFolderGuidKey), tree.folder->GetID().AsString());
    EXPECT_EQ(Stored(model::kUploadFolderParentProjGuidKey), tree.project->GetID().AsString());
    EXPECT_EQ(Stored(model::kUploadFolderPathKey), string(u"Studio/Editors/Alpha/Reviews"));
    EXPECT_EQ(host->ValueCount(), 3u);
}

TEST_F(ViewModelSequenceTest, ThePresetIsStoredAsItsJsonObject) {
    viewModel->SetSelectedEncoderPreset(Preset(u"H.264 \"High\"", u"/p/high.epr", u"mp4"));
    viewModel->WriteSelectedEncoderPresetToSequence();
    EXPECT_EQ(
        Stored(model::kSelectedEncoderPresetKey),
        string(
            uR"({"preset_name":"H.264 \"High\"","preset_path":"/p/high.epr","file_extension":"mp4"})"));
}

TEST_F(ViewModelSequenceTest, ClearingRemovesTheNineKeysInOrderAndLeavesTheProperties) {
    for (const auto key : model::kAllSequenceSettingKeys) {
        Store(key, u"x");
    }
    viewModel->SetReviewLinkURL(u"https://review.example/l/1");
    viewModel->SetActiveAssetDirty(true);
    viewModel->ClearAllSequenceSettings();
    const std::vector<string> cleared = host->ClearedKeys();
    ASSERT_EQ(cleared.size(), 9u);
    const std::vector<string> expected = {
        u"TSLY.VantroNative.ShareForReview.UploadedAssetGuid",
        u"TSLY.VantroNative.ShareForReview.UploadFolderGuid",
        u"TSLY.VantroNative.ShareForReview.UploadFolderPath",
        u"TSLY.VantroNative.ShareForReview.UploadFolderParentProjGuid",
        u"TSLY.VantroNative.ShareForReview.VersionStackGuid",
        u"TSLY.VantroNative.ShareForReview.ReviewLinkGuid",
        u"TSLY.VantroNative.ShareForReview.ReviewLinkURL",
        u"TSLY.VantroNative.ShareForReview.AssetModifiedAfterShare",
        u"TSLY.VantroNative.ShareForReview.SelectedEncoderPreset"};
    EXPECT_EQ(cleared, expected);
    EXPECT_EQ(host->ValueCount(), 0u);
    EXPECT_EQ(viewModel->GetReviewLinkURL(), u"https://review.example/l/1");
    EXPECT_TRUE(viewModel->GetActiveAssetDirty());
}

TEST_F(ViewModelSequenceTest, ANewPresetListSelectsItsFirstPreset) {
    const utility::SharedPtrVector<EncoderPresetModel> presets = {Preset(u"A", u"/a.epr", u"mov"),
                                                                  Preset(u"B", u"/b.epr", u"mp4")};
    viewModel->SetEncoderPresets(presets);
    EXPECT_EQ(viewModel->GetEncoderPresets(), presets);
    EXPECT_EQ(viewModel->GetSelectedEncoderPreset(), presets[0]);
}

TEST_F(ViewModelSequenceTest, TheSameListStillReselectsTheFirstPreset) {
    const utility::SharedPtrVector<EncoderPresetModel> presets = {Preset(u"A", u"/a.epr", u"mov"),
                                                                  Preset(u"B", u"/b.epr", u"mp4")};
    viewModel->SetEncoderPresets(presets);
    viewModel->SetSelectedEncoderPreset(presets[1]);
    std::vector<std::size_t> listDeliveries;
    auto binding = viewModel->AddEncoderPresetsBinding(
        [&](const utility::SharedPtrVector<EncoderPresetModel>& list) {
            listDeliveries.push_back(list.size());
        });
    Pump();
    listDeliveries.clear();
    viewModel->SetEncoderPresets(presets);
    Pump();
    EXPECT_TRUE(listDeliveries.empty());
    EXPECT_EQ(viewModel->GetSelectedEncoderPreset(), presets[0]);
}

TEST_F(ViewModelSequenceTest, AnEmptyListSelectsNothing) {
    viewModel->SetSelectedEncoderPreset(Preset(u"A", u"/a.epr", u"mov"));
    viewModel->SetEncoderPresets({});
    EXPECT_EQ(viewModel->GetSelectedEncoderPreset(), nullptr);
}

TEST_F(ViewModelSequenceTest, ThePipelinesPresetsReachTheViewModelsRule) {
    viewModel->SetSelectedEncoderPreset(Preset(u"Z", u"/z.epr", u"mov"));
    model::SetEncoderPresets({model::EncoderPresetData{u"A", u"/a.epr", u"mov"},
                              model::EncoderPresetData{u"B", u"/b.epr", u"mp4"}});
    const auto selected = viewModel->GetSelectedEncoderPreset();
    ASSERT_NE(selected, nullptr);
    EXPECT_EQ(selected->GetPresetName(), u"A");
}

TEST_F(ViewModelSequenceTest, AModifiedMarkOnAFreshSequenceIsNotStored) {
    viewModel->SetActiveAssetDirty(true);
    EXPECT_TRUE(viewModel->GetActiveAssetDirty());
    EXPECT_EQ(Stored(model::kAssetModifiedAfterShareKey), std::nullopt);
    EXPECT_EQ(sequenceWrites.load(), 0);
}

TEST_F(ViewModelSequenceTest, FalseIsAlwaysStoredAndThenTheNextTrueIsToo) {
    viewModel->SetActiveAssetDirty(false);
    EXPECT_EQ(Stored(model::kAssetModifiedAfterShareKey), string(u"false"));
    viewModel->SetActiveAssetDirty(false);  // unchanged property, still written
    EXPECT_EQ(sequenceWrites.load(), 2);
    viewModel->SetActiveAssetDirty(true);
    EXPECT_EQ(Stored(model::kAssetModifiedAfterShareKey), string(u"true"));
    EXPECT_EQ(sequenceWrites.load(), 3);
    EXPECT_TRUE(viewModel->GetActiveAssetDirty());
}

TEST_F(ViewModelSequenceTest, TrueOverAStoredTrueChangesOnlyTheProperty) {
    Store(model::kAssetModifiedAfterShareKey, u"true");
    viewModel->SetActiveAssetDirty(true);
    EXPECT_TRUE(viewModel->GetActiveAssetDirty());
    EXPECT_EQ(sequenceWrites.load(), 0);
}

TEST_F(ViewModelSequenceTest, TrueOverAStoredTextOtherThanTrueIsWritten) {
    Store(model::kAssetModifiedAfterShareKey, u"TRUE");  // reads as false
    viewModel->SetActiveAssetDirty(true);
    EXPECT_EQ(Stored(model::kAssetModifiedAfterShareKey), string(u"true"));
    EXPECT_EQ(sequenceWrites.load(), 1);
}

TEST_F(ViewModelSequenceTest, TheMarkIsWrittenBeforeThePropertyIsDelivered) {
    std::vector<std::optional<string>> storedAtDelivery;
    auto binding = viewModel->AddActiveAssetDirtyBinding(
        [&](bool) { storedAtDelivery.push_back(Stored(model::kAssetModifiedAfterShareKey)); });
    Pump();
    storedAtDelivery.clear();
    viewModel->SetActiveAssetDirty(true);
    viewModel->SetActiveAssetDirty(false);
    Pump();
    ASSERT_EQ(storedAtDelivery.size(), 2u);
    EXPECT_EQ(storedAtDelivery[1], string(u"false"));
}

TEST_F(ViewModelSequenceTest, TheMarkMayBeSetFromThePipelinesThreads) {
    const std::weak_ptr<ActiveAssetDirtyNotifyingProperty> pipelineHandle = viewModel;
    std::thread worker([pipelineHandle] {
        for (int i = 0; i < 100; ++i) {
            pipelineHandle.lock()->SetActiveAssetDirty(i % 2 == 0);
        }
    });
    for (int i = 0; i < 100; ++i) {
        viewModel->ReadSettingsFromCurrentSequence();
    }
    worker.join();
    Pump();
    viewModel->SetActiveAssetDirty(false);
    EXPECT_EQ(Stored(model::kAssetModifiedAfterShareKey), string(u"false"));
}

TEST_F(ViewModelSequenceTest, ANewLinkForgetsTheSelectionAndShowsTheShareScreen) {
    const LocalTree tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    tree.user->SetProposedAccount(tree.account);
    tree.user->SetSelection(tree.folder);
    viewModel->SetCurrentViewID(ViewID::CopyLinkSection);
    viewModel->CreateNewLink();
    EXPECT_EQ(tree.user->GetSelection(), nullptr);
    EXPECT_EQ(tree.user->GetProposedAccount(), nullptr);
    EXPECT_TRUE(viewModel->GetCreateNewLinkMode());
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
    EXPECT_EQ(host->ValueCount(), 0u);
}

}  // namespace
}  // namespace vantrokelui::viewmodel::testing
