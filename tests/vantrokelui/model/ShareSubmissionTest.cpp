// Starting a share: which path it takes from what the sequence stores, the silent stops, the
// preset, the output file's name and place, and what the panel is told. Paths that need a new
// review link are followed here only as far as the library goes without a cloud client (no
// answer ever comes); ShareCloudTest follows them through the real service.
#include <vantrokelui/model/ShareManager.h>

#include <gtest/gtest.h>

#include <kelcore/config/kel_exception.h>
#include <support/TemporaryDirectory.h>

#include "ShareTestFixture.h"
#include "vantrokelui/support/RecordingToastManager.h"

namespace vantrokelui::model {
namespace {

using testing::RecordingPanel;
using testing::ShareTestFixture;
using testing::U16;
using vantrokelui::testing::RecordingToastManager;

class ShareSubmissionTest : public ShareTestFixture {
protected:
    static inline const Guid kStack{0x5a, 1};
    static inline const Guid kLink{0x11, 1};
    static constexpr std::string_view kURL = "http://127.0.0.1:8080/r/abc";
    static inline const EncoderPresetAttributes kProRes{u"ProRes 422", u"/presets/prores.epr",
                                                        u"mov"};

    std::shared_ptr<ShareJob> OnlyJob() {
        const auto renders = encoder->Renders();
        EXPECT_EQ(renders.size(), 1u);
        return renders.empty() ? nullptr : manager.GetJobW(renders.front().jobID);
    }
};

TEST_F(ShareSubmissionTest, AStoredLinkMakesTheJobAtOnceAsAnUpdateOfTheSharedContent) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    StorePreset(kSequenceA, kProRes);

    manager.ProcessAssetForReview();

    const auto renders = encoder->Renders();
    ASSERT_EQ(renders.size(), 1u);
    EXPECT_EQ(renders[0].outputFilePath, OutputPath("Cut 1.mov"));
    EXPECT_EQ(renders[0].presetPath, u"/presets/prores.epr");
    EXPECT_FALSE(Guid(renders[0].jobID).IsNil()) << U8(renders[0].jobID);
    EXPECT_EQ(manager.GetActiveSequenceJobID(), renders[0].jobID);
    const std::shared_ptr<ShareJob> job = manager.GetJobW(renders[0].jobID);
    ASSERT_TRUE(job);
    EXPECT_EQ(job->GetProcessingGuids(), kSequenceA);
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::Queued);
    EXPECT_EQ(job->GetEncodingProgress(), 0.0);
    EXPECT_FALSE(job->GetAddToLink());
    EXPECT_EQ(job->GetVersionStackGuid(), kStack);
    EXPECT_EQ(job->GetReviewLinkGuid(), kLink);
    EXPECT_EQ(job->GetReviewLinkURL(), U16(kURL));
    EXPECT_EQ(job->GetOutputFilePath(), OutputPath("Cut 1.mov"));
    EXPECT_TRUE(manager.HasActiveShareJobs());
    EXPECT_EQ(folderWrites->load(), 0);
}

TEST_F(ShareSubmissionTest, TheEncoderIsAskedBeforeThePanelIsPutOnTheQueuedScreen) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    std::vector<std::size_t> writesBeforeRender;
    manager.SetAssetProcessingMethod(
        [&](const string&, const string&, const string&) {
            writesBeforeRender.push_back(panel->Writes().size());
        },
        encoder->CancelFn(encoder));

    manager.ProcessAssetForReview();

    EXPECT_EQ(writesBeforeRender, std::vector<std::size_t>{0});
    EXPECT_EQ(panel->Writes(), (std::vector<std::string>{
                                   "CurrentViewID=11", "EncodingStatus=1", "EncodingProgress=0",
                                   "ProcessingRemainingTime=0", "UploadingSpeed=0"}));
}

TEST_F(ShareSubmissionTest, APropertyThatHasGoneIsSkippedAndTheShareGoesOn) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    StorePreset(kSequenceA, kProRes);
    const std::weak_ptr<RecordingPanel> gone = panel;
    panel.reset();
    ASSERT_TRUE(gone.expired());

    manager.ProcessAssetForReview();

    ASSERT_EQ(encoder->Renders().size(), 1u);
    EXPECT_TRUE(manager.HasActiveShareJobs());
}

TEST_F(ShareSubmissionTest, AStoredLinkWithoutAStoredVersionStackIsReusedAndGetsTheAsset) {
    ChooseFolder();
    host->Put(kSequenceA, kReviewLinkGuidKey, kLink.AsString());
    host->Put(kSequenceA, kReviewLinkURLKey, U16(kURL));

    manager.ProcessAssetForReview();

    const std::shared_ptr<ShareJob> job = OnlyJob();
    ASSERT_TRUE(job);
    EXPECT_TRUE(job->GetAddToLink());
    EXPECT_EQ(job->GetReviewLinkGuid(), kLink);
    EXPECT_TRUE(job->GetVersionStackGuid().IsNil());
}

TEST_F(ShareSubmissionTest, ANilStoredLinkCountsAsNoLink) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, Guid(), kURL);

    manager.ProcessAssetForReview();

    // A link would have to be made; without a cloud client no answer comes and no job is made.
    EXPECT_TRUE(encoder->Renders().empty());
    EXPECT_FALSE(manager.HasActiveShareJobs());
    EXPECT_TRUE(panel->Writes().empty());
}

TEST_F(ShareSubmissionTest, AnEmptyStoredLinkAddressCountsAsNoLink) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, "");

    manager.ProcessAssetForReview();

    EXPECT_TRUE(encoder->Renders().empty());
    EXPECT_FALSE(manager.HasActiveShareJobs());
}

TEST_F(ShareSubmissionTest, AMissingStoredLinkAddressCountsAsNoLink) {
    ChooseFolder();
    host->Put(kSequenceA, kVersionStackGuidKey, kStack.AsString());
    host->Put(kSequenceA, kReviewLinkGuidKey, kLink.AsString());

    manager.ProcessAssetForReview();

    EXPECT_TRUE(encoder->Renders().empty());
}

TEST_F(ShareSubmissionTest, WithoutAFolderNothingHappensAtAll) {
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    host->Put(kSequenceA, kUploadFolderParentProjGuidKey, kCloudProject.AsString());
    RecordingToastManager toasts;

    manager.ProcessAssetForReview();
    Pump();

    EXPECT_TRUE(encoder->Renders().empty());
    EXPECT_FALSE(manager.HasActiveShareJobs());
    EXPECT_TRUE(manager.GetActiveSequenceJobID().empty());
    EXPECT_TRUE(panel->Writes().empty());
    EXPECT_TRUE(toasts.Toasts().empty());
    EXPECT_TRUE(host->ClearedKeys().empty());
}

TEST_F(ShareSubmissionTest, WithoutACloudProjectAndWithoutALinkNothingHappens) {
    host->Put(kSequenceA, kUploadFolderGuidKey, kFolder.AsString());
    RecordingToastManager toasts;

    manager.ProcessAssetForReview();
    Pump();

    EXPECT_TRUE(encoder->Renders().empty());
    EXPECT_FALSE(manager.HasActiveShareJobs());
    EXPECT_TRUE(panel->Writes().empty());
    EXPECT_TRUE(toasts.Toasts().empty());
}

TEST_F(ShareSubmissionTest, TheFolderIsReadFromTheActiveSequenceOnly) {
    ChooseFolder(kSequenceB);
    StoreSharedLink(kSequenceB, kStack, kLink, kURL);

    manager.ProcessAssetForReview();  // sequence A is active and has nothing

    EXPECT_TRUE(encoder->Renders().empty());
    host->SetActive(kSequenceB);
    manager.ProcessAssetForReview();
    ASSERT_EQ(encoder->Renders().size(), 1u);
    EXPECT_EQ(manager.GetJobW(encoder->Renders()[0].jobID)->GetProcessingGuids(), kSequenceB);
}

TEST_F(ShareSubmissionTest, NewLinkModeRemovesTheLastShareThenWritesTheFolderAgain) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    host->Put(kSequenceA, kUploadedAssetGuidKey, Guid(0xa5, 1).AsString());
    panel->SetCreateNewLinkMode(true);
    panel->ClearWrites();
    std::vector<std::size_t> removedBeforeWrite;
    RecordingPanel::Install(manager, panel,
                            [&] { removedBeforeWrite.push_back(host->ClearedKeys().size()); });

    manager.ProcessAssetForReview();

    EXPECT_EQ(host->ClearedKeys(),
              (std::vector<string>{string(kUploadedAssetGuidKey), string(kVersionStackGuidKey),
                                   string(kReviewLinkGuidKey), string(kReviewLinkURLKey)}));
    EXPECT_EQ(removedBeforeWrite, std::vector<std::size_t>{4});
    EXPECT_FALSE(host->Find(kSequenceA, kVersionStackGuidKey));
    EXPECT_TRUE(host->Find(kSequenceA, kUploadFolderGuidKey));
    // The mode is the view model's to end.
    EXPECT_TRUE(panel->GetCreateNewLinkMode());
    EXPECT_TRUE(panel->WritesOf("CreateNewLinkMode").empty());
    // With the old link gone a new one must be made, which needs the cloud.
    EXPECT_TRUE(encoder->Renders().empty());
}

TEST_F(ShareSubmissionTest, NewLinkModeRemovesTheValuesEvenWhenNoFolderFollows) {
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    host->Put(kSequenceA, kUploadedAssetGuidKey, Guid(0xa5, 1).AsString());
    panel->SetCreateNewLinkMode(true);

    manager.ProcessAssetForReview();

    EXPECT_EQ(host->ClearedKeys().size(), 4u);
    EXPECT_EQ(folderWrites->load(), 1);
    EXPECT_EQ(host->ValueCount(), 0u);
    EXPECT_TRUE(encoder->Renders().empty());
}

TEST_F(ShareSubmissionTest, OutsideNewLinkModeNothingIsRemoved) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);

    manager.ProcessAssetForReview();

    EXPECT_TRUE(host->ClearedKeys().empty());
    EXPECT_EQ(folderWrites->load(), 0);
}

TEST_F(ShareSubmissionTest, WithoutAStoredPresetTheSelectedOneIsUsed) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    panel->SetSelectedEncoderPreset(panel->GetEncoderPresets().at(1));  // ProRes

    manager.ProcessAssetForReview();

    const auto renders = encoder->Renders();
    ASSERT_EQ(renders.size(), 1u);
    EXPECT_EQ(renders[0].presetPath, u"/presets/prores.epr");
    EXPECT_EQ(renders[0].outputFilePath, OutputPath("Cut 1.mov"));
}

TEST_F(ShareSubmissionTest, AStoredPresetThatDoesNotParseFallsBackToTheSelectedOne) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    host->Put(kSequenceA, kSelectedEncoderPresetKey, u"{not json");

    manager.ProcessAssetForReview();

    const auto renders = encoder->Renders();
    ASSERT_EQ(renders.size(), 1u);
    EXPECT_EQ(renders[0].presetPath, u"/presets/h264.epr");
    EXPECT_EQ(renders[0].outputFilePath, OutputPath("Cut 1.mp4"));
}

TEST_F(ShareSubmissionTest, AStoredPresetWinsOverTheSelectedOne) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    StorePreset(kSequenceA, {u"Custom", u"/presets/custom.epr", u"mkv"});

    manager.ProcessAssetForReview();

    const auto renders = encoder->Renders();
    ASSERT_EQ(renders.size(), 1u);
    EXPECT_EQ(renders[0].presetPath, u"/presets/custom.epr");
    EXPECT_EQ(renders[0].outputFilePath, OutputPath("Cut 1.mkv"));
}

TEST_F(ShareSubmissionTest, WithoutAStoredPresetAndWithThePanelGoneThePresetIsEmpty) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    panel.reset();

    manager.ProcessAssetForReview();

    const auto renders = encoder->Renders();
    ASSERT_EQ(renders.size(), 1u);
    EXPECT_TRUE(renders[0].presetPath.empty());
    // The panel held the sequence's name too.
    EXPECT_EQ(renders[0].outputFilePath, OutputPath("TestProject.mp4"));
}

TEST_F(ShareSubmissionTest, WithThePanelGoneTheFileIsNamedTestProjectWhateverThePreset) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    StorePreset(kSequenceA, kProRes);
    panel.reset();

    manager.ProcessAssetForReview();

    const auto renders = encoder->Renders();
    ASSERT_EQ(renders.size(), 1u);
    EXPECT_EQ(renders[0].outputFilePath, OutputPath("TestProject.mp4"));
    EXPECT_EQ(renders[0].presetPath, u"/presets/prores.epr");
    EXPECT_EQ(manager.GetOutputFileName(u"mov"), u"TestProject.mp4");
}

TEST_F(ShareSubmissionTest, NoStoredPresetAndNothingSelectedRefusesToStartAShare) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    SetPresets({});
    ASSERT_FALSE(panel->GetSelectedEncoderPreset());

    EXPECT_THROW(manager.ProcessAssetForReview(), kelcore::config::kel_exception);

    EXPECT_TRUE(encoder->Renders().empty());
    EXPECT_FALSE(manager.HasActiveShareJobs());
}

TEST_F(ShareSubmissionTest, CharactersIllegalInFileNamesBecomeHyphens) {
    panel->SetActiveAssetName(u"A/B: take 2?");

    EXPECT_EQ(manager.GetOutputFileName(u"mp4"), u"A-B- take 2-.mp4");
    EXPECT_EQ(manager.GetOutputFileFullPath(u"mp4"), OutputPath("A-B- take 2-.mp4"));
}

TEST_F(ShareSubmissionTest, TheExtensionIsAppendedEvenWhenTheNameEndsInIt) {
    panel->SetActiveAssetName(u"clip.mp4");

    EXPECT_EQ(manager.GetOutputFileName(u"mp4"), u"clip.mp4.mp4");
    EXPECT_EQ(manager.GetOutputFileName(u""), u"clip.mp4.");
}

TEST_F(ShareSubmissionTest, TheOutputFileLiesInTheUserCacheDirectory) {
    EXPECT_EQ(manager.GetOutputFileFullPath(u"mov"), OutputPath("Cut 1.mov"));
    EXPECT_TRUE(std::filesystem::is_directory(cacheHome.Path() / "vantrokelui"));
}

TEST_F(ShareSubmissionTest, ALeftoverFileIsDeletedBeforeTheEncoderIsAsked) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    const string leftover = OutputPath("Cut 1.mp4");
    WriteFile(leftover);
    std::vector<bool> existedAtRender;
    manager.SetAssetProcessingMethod(
        [&](const string& path, const string&, const string&) {
            existedAtRender.push_back(FileExists(path));
        },
        encoder->CancelFn(encoder));

    manager.ProcessAssetForReview();

    EXPECT_EQ(existedAtRender, std::vector<bool>{false});
}

TEST_F(ShareSubmissionTest, TwoSequencesOfOneNameShareThePathAndTheSecondShareDeletesTheFirst) {
    ChooseFolder(kSequenceA);
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    ChooseFolder(kSequenceB);
    StoreSharedLink(kSequenceB, Guid(0x5a, 2), Guid(0x11, 2), kURL);
    manager.ProcessAssetForReview();
    const string firstPath = encoder->Renders().at(0).outputFilePath;
    WriteFile(firstPath);  // the encoder is still writing the first one

    host->SetActive(kSequenceB);
    manager.ProcessAssetForReview();

    const auto renders = encoder->Renders();
    ASSERT_EQ(renders.size(), 2u);
    EXPECT_EQ(renders[1].outputFilePath, firstPath);
    EXPECT_NE(renders[1].jobID, renders[0].jobID);
    EXPECT_FALSE(FileExists(firstPath));
    EXPECT_EQ(manager.GetJobCount(), 2u);
}

TEST_F(ShareSubmissionTest, ASecondShareOfASequenceTakesThePlaceOfItsFirstJob) {
    ChooseFolder();
    StoreSharedLink(kSequenceA, kStack, kLink, kURL);
    manager.ProcessAssetForReview();
    manager.ProcessAssetForReview();

    const auto renders = encoder->Renders();
    ASSERT_EQ(renders.size(), 2u);
    EXPECT_EQ(manager.GetJobCount(), 1u);
    EXPECT_FALSE(manager.GetJobW(renders[0].jobID));
    EXPECT_EQ(manager.GetActiveSequenceJobID(), renders[1].jobID);
}

TEST_F(ShareSubmissionTest, TheInternalStepUsesExactlyWhatItIsGiven) {
    const ReviewAttributes review{kFolder, true, kStack, kLink, U16(kURL)};

    manager.ProcessAssetForReview_Internal(kSequenceB, review, kProRes);

    const auto renders = encoder->Renders();
    ASSERT_EQ(renders.size(), 1u);
    EXPECT_EQ(renders[0].presetPath, u"/presets/prores.epr");
    EXPECT_EQ(renders[0].outputFilePath, OutputPath("Cut 1.mov"));
    const std::shared_ptr<ShareJob> job = manager.GetJobW(renders[0].jobID);
    ASSERT_TRUE(job);
    EXPECT_EQ(job->GetProcessingGuids(), kSequenceB);
    EXPECT_TRUE(job->GetAddToLink());
    EXPECT_EQ(job->GetReviewLinkURL(), U16(kURL));
    EXPECT_EQ(manager.GetActiveSequenceJobID(), renders[0].jobID);
}

}  // namespace
}  // namespace vantrokelui::model
