#include <vantrokelui/model/ShareManager.h>

#include <atomic>
#include <latch>
#include <string>
#include <thread>
#include <typeinfo>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/logging/CapturedLogForTesting.h>
#include <support/MainThreadFixture.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/utility/DataBindingTarget.h>

#include "vantrokelui/support/FakeSequenceHost.h"
#include "vantrokelui/support/PanelProperties.h"

namespace vantrokelui::model {
namespace {

using kelcore::string::string;
using kelcore::utility::Guid;
using testing::FakeSequenceHost;
using testing::PanelProperties;
using testing::U16;

const ProcessingGuids kSequenceA{Guid(1, 1), Guid(2, 1)};
const ProcessingGuids kSequenceB{Guid(1, 1), Guid(2, 2)};

EncodingAttributes Status(EncodingStatus status, double progress = 0.0) {
    return EncodingAttributes{status, progress};
}

class ShareManagerTest : public testsupport::MainThreadFixture {
protected:
    void SetUp() override {
        MainThreadFixture::SetUp();
        manager.SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                    host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        PanelProperties::Install(manager, panel);
    }

    void AddJob(std::string_view id, const ProcessingGuids& guids,
                EncodingAttributes attributes = Status(EncodingStatus::Queued),
                ReviewAttributes review = {}) {
        manager.AddJobToMap(U16(id), guids, attributes, review, U16("/cache/out.mp4"));
    }

    // Records every delivery of the five values SetCurrentActiveSequenceAndProperties writes,
    // in the order they reach the main thread.
    void RecordPublishedValues() {
        auto add = [this](std::string name) {
            return [this, name](auto value) {
                if constexpr (std::is_same_v<std::decay_t<decltype(value)>, string>) {
                    events.push_back(name + "=" + kelcore::string::UTF16toStdString(value));
                } else if constexpr (std::is_same_v<decltype(value), EncodingStatus>) {
                    events.push_back(name + "=" + std::to_string(static_cast<int>(value)));
                } else {
                    events.push_back(name + "=" + std::to_string(value));
                }
            };
        };
        target.bindings.push_back(panel->AddEncodingStatusBinding(add("status")));
        target.bindings.push_back(panel->AddEncodingProgressBinding(add("progress")));
        target.bindings.push_back(panel->AddProcessingRemainingTimeBinding(add("remaining")));
        target.bindings.push_back(panel->AddUploadingSpeedBinding(add("speed")));
        target.bindings.push_back(
            panel->AddReviewLinkURLBinding([this, add](const string& url) { add("link")(url); }));
        Pump();
        events.clear();  // the first delivery of each binding is not what is under test
    }

    std::shared_ptr<FakeSequenceHost> host = FakeSequenceHost::Create();
    std::shared_ptr<PanelProperties> panel = PanelProperties::Create();
    ShareManager manager;
    utility::DataBindingTarget target;
    std::vector<std::string> events;
};

// --- jobs ------------------------------------------------------------------------------------

TEST_F(ShareManagerTest, AddedJobCarriesItsArgumentsAndIsFoundById) {
    ReviewAttributes review;
    review.addToLink = true;
    review.reviewLinkGuid = Guid(5, 5);
    review.reviewLinkURL = U16("https://r/1");
    manager.AddJobToMap(U16("job-1"), kSequenceA, Status(EncodingStatus::Queued, 0.5), review,
                        U16("/cache/a.mp4"));

    const std::shared_ptr<ShareJob> job = manager.GetJobW(U16("job-1"));
    ASSERT_TRUE(job);
    EXPECT_EQ(job->GetProcessingGuids(), kSequenceA);
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::Queued);
    EXPECT_EQ(job->GetEncodingProgress(), 0.5);
    EXPECT_TRUE(job->GetAddToLink());
    EXPECT_EQ(job->GetReviewLinkGuid(), Guid(5, 5));
    EXPECT_EQ(job->GetReviewLinkURL(), U16("https://r/1"));
    EXPECT_EQ(job->GetOutputFilePath(), U16("/cache/a.mp4"));
    EXPECT_FALSE(manager.GetJobW(U16("job-2")));
}

TEST_F(ShareManagerTest, AddingAJobForASequenceWithOneReplacesItAndKeepsTheSize) {
    AddJob("old", kSequenceA);
    AddJob("other", kSequenceB);
    ASSERT_EQ(manager.GetJobCount(), 2u);
    const std::shared_ptr<ShareJob> old = manager.GetJobW(U16("old"));

    AddJob("new", kSequenceA);
    EXPECT_EQ(manager.GetJobCount(), 2u);
    EXPECT_FALSE(manager.GetJobW(U16("old")));
    EXPECT_TRUE(manager.GetJobW(U16("new")));
    EXPECT_TRUE(manager.GetJobW(U16("other")));
    // Whoever still holds the old job keeps a live object.
    EXPECT_EQ(old->GetProcessingGuids(), kSequenceA);
}

TEST_F(ShareManagerTest, AddingDropsOnlyTheOldestJobOfTheSequence) {
    AddJob("first", kSequenceA);
    AddJob("second", kSequenceB);
    // A second job of sequence A can only arise by re-aiming one; the walk stops at the first.
    manager.GetJobW(U16("second"))->SetProcessingSequenceGuid(kSequenceA.sequenceGuid);

    AddJob("third", kSequenceA);
    EXPECT_FALSE(manager.GetJobW(U16("first")));
    EXPECT_TRUE(manager.GetJobW(U16("second")));
    EXPECT_TRUE(manager.GetJobW(U16("third")));
    EXPECT_EQ(manager.GetJobCount(), 2u);
}

TEST_F(ShareManagerTest, SameSequenceGuidInAnotherProjectIsAnotherSequence) {
    AddJob("a", kSequenceA);
    AddJob("b", ProcessingGuids{Guid(9, 9), kSequenceA.sequenceGuid});
    EXPECT_EQ(manager.GetJobCount(), 2u);
}

TEST_F(ShareManagerTest, JobIdsAreComparedAsWholeStrings) {
    AddJob("abc", ProcessingGuids{Guid(1, 1), Guid(3, 1)});
    AddJob("ABC", ProcessingGuids{Guid(1, 1), Guid(3, 2)});
    AddJob("abcd", ProcessingGuids{Guid(1, 1), Guid(3, 3)});
    EXPECT_EQ(manager.GetJobCount(), 3u);
    EXPECT_EQ(manager.GetJobW(U16("abc"))->GetProcessingSequenceGuid(), Guid(3, 1));
    EXPECT_EQ(manager.GetJobW(U16("ABC"))->GetProcessingSequenceGuid(), Guid(3, 2));
    EXPECT_EQ(manager.GetJobW(U16("abcd"))->GetProcessingSequenceGuid(), Guid(3, 3));
    EXPECT_FALSE(manager.GetJobW(U16("ab")));
    EXPECT_FALSE(manager.GetJobW(U16("Abc")));
}

TEST_F(ShareManagerTest, ReusedIdReplacesTheJobFiledUnderIt) {
    AddJob("same", kSequenceA, Status(EncodingStatus::Queued));
    AddJob("same", kSequenceB, Status(EncodingStatus::Encoding));
    EXPECT_EQ(manager.GetJobCount(), 1u);
    EXPECT_EQ(manager.GetJobW(U16("same"))->GetProcessingGuids(), kSequenceB);
}

TEST_F(ShareManagerTest, HasActiveShareJobsWhileAnyJobIsFiledWhateverItsStatus) {
    EXPECT_FALSE(manager.HasActiveShareJobs());
    AddJob("cancelled", kSequenceA, Status(EncodingStatus::CancelRequested));
    EXPECT_TRUE(manager.HasActiveShareJobs());
}

// --- active sequence -------------------------------------------------------------------------

TEST_F(ShareManagerTest, ActiveSequenceWithAJobPublishesItsFiveValuesInOrder) {
    ReviewAttributes review;
    review.reviewLinkURL = U16("https://r/a");
    AddJob("job-a", kSequenceA, Status(EncodingStatus::Uploading, 0.4), review);
    const auto job = manager.GetJobW(U16("job-a"));
    job->SetProcessingRemainingTime(12.0);
    job->SetUploadingSpeed(3.5);
    RecordPublishedValues();
    host->SetActive(kSequenceA);

    manager.SetCurrentActiveSequenceAndProperties();
    EXPECT_TRUE(events.empty());  // delivered later, on the main thread
    Pump();

    EXPECT_EQ(manager.GetActiveSequenceJobID(), U16("job-a"));
    EXPECT_EQ(manager.GetActiveSequenceJob(), job);
    EXPECT_EQ(events,
              (std::vector<std::string>{"status=6", "progress=0.400000", "remaining=12.000000",
                                        "speed=3.500000", "link=https://r/a"}));
    EXPECT_EQ(host->GetActiveCalls(), 1);
}

TEST_F(ShareManagerTest, ActiveSequenceWithoutAJobClearsTheIdAndPublishesNothing) {
    AddJob("job-a", kSequenceA, Status(EncodingStatus::Encoding, 0.7));
    host->SetActive(kSequenceA);
    manager.SetCurrentActiveSequenceAndProperties();
    Pump();
    ASSERT_EQ(panel->GetEncodingProgress(), 0.7);
    RecordPublishedValues();

    host->SetActive(kSequenceB);
    manager.SetCurrentActiveSequenceAndProperties();
    Pump();

    EXPECT_TRUE(manager.GetActiveSequenceJobID().empty());
    EXPECT_FALSE(manager.GetActiveSequenceJob());
    EXPECT_TRUE(events.empty());
    // The last sequence's progress stays until the panel moves on.
    EXPECT_EQ(panel->GetEncodingProgress(), 0.7);
}

TEST_F(ShareManagerTest, ActiveSequenceTakesItsFirstJobInFilingOrder) {
    // Twenty jobs, then all re-aimed at one sequence: the first filed must win, which a walk in
    // hash order would almost never give.
    std::vector<std::string> ids;
    for (int i = 0; i < 20; ++i) {
        ids.push_back("job-" + std::to_string((i * 7) % 20) + "-" + std::to_string(i));
        AddJob(ids.back(), ProcessingGuids{Guid(5, 0), Guid(6, static_cast<std::uint64_t>(i))});
    }
    for (const std::string& id : ids) {
        const auto job = manager.GetJobW(U16(id));
        job->SetProcessingProjectGuid(kSequenceA.projectGuid);
        job->SetProcessingSequenceGuid(kSequenceA.sequenceGuid);
    }
    host->SetActive(kSequenceA);
    manager.SetCurrentActiveSequenceAndProperties();
    EXPECT_EQ(manager.GetActiveSequenceJobID(), U16(ids.front()));

    AddJob("replacement", kSequenceA);  // drops the first filed
    manager.SetCurrentActiveSequenceAndProperties();
    EXPECT_EQ(manager.GetActiveSequenceJobID(), U16(ids[1]));
}

TEST_F(ShareManagerTest, ActiveSequenceWithThePanelGoneStillFindsItsJob) {
    AddJob("job-a", kSequenceA, Status(EncodingStatus::Encoding));
    panel.reset();
    host->SetActive(kSequenceA);
    manager.SetCurrentActiveSequenceAndProperties();
    EXPECT_EQ(manager.GetActiveSequenceJobID(), U16("job-a"));
    EXPECT_EQ(manager.GetShareJobEncodingStatus(), EncodingStatus::Encoding);
}

TEST_F(ShareManagerTest, EncodingStatusIsNoneWithoutAJobForTheActiveSequence) {
    EXPECT_EQ(static_cast<int>(manager.GetShareJobEncodingStatus()), 0);
    AddJob("job-b", kSequenceB, Status(EncodingStatus::Encoded));
    host->SetActive(kSequenceA);
    manager.SetCurrentActiveSequenceAndProperties();
    EXPECT_EQ(manager.GetShareJobEncodingStatus(), EncodingStatus::None);

    host->SetActive(kSequenceB);
    manager.SetCurrentActiveSequenceAndProperties();
    EXPECT_EQ(manager.GetShareJobEncodingStatus(), EncodingStatus::Encoded);
}

TEST_F(ShareManagerTest, ActiveJobIsNoLongerFoundOnceReplaced) {
    AddJob("job-a", kSequenceA);
    host->SetActive(kSequenceA);
    manager.SetCurrentActiveSequenceAndProperties();
    AddJob("job-a2", kSequenceA);
    // The id stays until the next re-aim; the job under it is gone.
    EXPECT_EQ(manager.GetActiveSequenceJobID(), U16("job-a"));
    EXPECT_FALSE(manager.GetActiveSequenceJob());
    EXPECT_EQ(manager.GetShareJobEncodingStatus(), EncodingStatus::None);
}

TEST_F(ShareManagerTest, MissingActiveSequenceFunctionRaisesBadFunctionCall) {
    ShareManager bare;
    EXPECT_THROW(bare.SetCurrentActiveSequenceAndProperties(), std::bad_function_call);
}

// --- presets ---------------------------------------------------------------------------------

std::vector<EncoderPresetData> TwoPresets() {
    return {{U16("H.264"), U16("/p/h264.epr"), U16("mp4")},
            {U16("ProRes"), U16("/p/prores.epr"), U16("mov")}};
}

TEST_F(ShareManagerTest, PresetsArePublishedInTheHostsOrderAndTheFirstIsSelected) {
    std::vector<std::size_t> sizes;
    target.bindings.push_back(panel->AddEncoderPresetsBinding(
        [&](const utility::SharedPtrVector<EncoderPresetModel>& models) {
            sizes.push_back(models.size());
        }));
    manager.SetEncoderPresets(TwoPresets());
    Pump();

    const auto models = panel->GetEncoderPresets();
    ASSERT_EQ(models.size(), 2u);
    EXPECT_EQ(models[0]->GetPresetName(), U16("H.264"));
    EXPECT_EQ(models[0]->GetPresetPath(), U16("/p/h264.epr"));
    EXPECT_EQ(models[0]->GetExtension(), U16("mp4"));
    EXPECT_EQ(models[1]->GetPresetName(), U16("ProRes"));
    EXPECT_EQ(models[1]->GetExtension(), U16("mov"));
    EXPECT_EQ(panel->GetSelectedEncoderPreset(), models[0]);
    EXPECT_EQ(sizes, (std::vector<std::size_t>{0, 2}));
    EXPECT_EQ(manager.GetSelectedEncoderPresetPath(), U16("/p/h264.epr"));
}

TEST_F(ShareManagerTest, SamePresetsAgainAreNewModelsAndDeliverAgain) {
    manager.SetEncoderPresets(TwoPresets());
    const auto first = panel->GetEncoderPresets();
    int deliveries = 0;
    target.bindings.push_back(panel->AddEncoderPresetsBinding(
        [&](const utility::SharedPtrVector<EncoderPresetModel>&) { ++deliveries; }));
    Pump();
    manager.SetEncoderPresets(TwoPresets());
    Pump();
    EXPECT_EQ(deliveries, 2);
    EXPECT_NE(panel->GetEncoderPresets()[0], first[0]);
}

TEST_F(ShareManagerTest, EmptyPresetListSelectsNothing) {
    manager.SetEncoderPresets(TwoPresets());
    ASSERT_TRUE(panel->GetSelectedEncoderPreset());
    manager.SetEncoderPresets({});
    EXPECT_TRUE(panel->GetEncoderPresets().empty());
    EXPECT_FALSE(panel->GetSelectedEncoderPreset());
    EXPECT_TRUE(manager.GetSelectedEncoderPresetPath().empty());
}

TEST_F(ShareManagerTest, PresetsDoNothingWhenThePresetsPropertyHasGone) {
    // Only the selection is alive: the step stops at the missing presets property.
    auto selection = std::make_shared<PanelProperties>();
    manager.SetNotifyingProperties(
        {}, {}, {}, {}, {}, {}, {}, {}, {}, std::weak_ptr<EncoderPresetsNotifyingProperty>(),
        std::weak_ptr<SelectedEncoderPresetNotifyingProperty>(selection), {});
    auto existing = EncoderPresetModel::Create();
    selection->SetSelectedEncoderPreset(existing);
    manager.SetEncoderPresets(TwoPresets());
    EXPECT_EQ(selection->GetSelectedEncoderPreset(), existing);
    EXPECT_TRUE(selection->GetEncoderPresets().empty());
}

TEST_F(ShareManagerTest, SelectedPresetPathIsEmptyWithoutSelectionOrProperty) {
    EXPECT_TRUE(manager.GetSelectedEncoderPresetPath().empty());
    auto preset = EncoderPresetModel::Create();
    preset->SetPresetPath(U16("/p/x.epr"));
    panel->SetSelectedEncoderPreset(preset);
    EXPECT_EQ(manager.GetSelectedEncoderPresetPath(), U16("/p/x.epr"));
    panel.reset();
    EXPECT_TRUE(manager.GetSelectedEncoderPresetPath().empty());
}

TEST_F(ShareManagerTest, SecondSetOfPropertiesReplacesTheFirst) {
    auto second = PanelProperties::Create();
    PanelProperties::Install(manager, second);
    manager.SetEncoderPresets(TwoPresets());
    EXPECT_TRUE(panel->GetEncoderPresets().empty());
    EXPECT_EQ(second->GetEncoderPresets().size(), 2u);
}

// --- preset stored with the sequence ---------------------------------------------------------

class StoredPresetTest : public ShareManagerTest {
protected:
    void Store(std::string_view text) {
        host->Put(kSequenceA, kSelectedEncoderPresetKey, U16(text));
    }
    EncoderPresetAttributes untouched{U16("keep"), U16("/keep.epr"), U16("kp")};
    EncoderPresetAttributes read = untouched;
    kelcore::logging::CapturedLogForTesting log;
};

TEST_F(StoredPresetTest, ReadsTheThreeMembers) {
    Store(R"({"preset_name":"Vidéo","preset_path":"/p/v.epr","file_extension":"mp4"})");
    EXPECT_TRUE(manager.GetEncoderPresetFromSequence(kSequenceA, read));
    EXPECT_EQ(read, (EncoderPresetAttributes{U16("Vidéo"), U16("/p/v.epr"), U16("mp4")}));
    EXPECT_TRUE(log.Entries().empty());
}

TEST_F(StoredPresetTest, ReadsWhatTheWriterFormats) {
    const EncoderPresetAttributes written{U16("A \"quoted\" name"), U16("C:\\p\\a.epr"),
                                          U16("mxf")};
    host->Put(kSequenceA, kSelectedEncoderPresetKey, FormatEncoderPresetJSON(written));
    EXPECT_TRUE(manager.GetEncoderPresetFromSequence(kSequenceA, read));
    EXPECT_EQ(read, written);
}

TEST_F(StoredPresetTest, NothingStoredIsFalseAndLeavesTheRecord) {
    EXPECT_FALSE(manager.GetEncoderPresetFromSequence(kSequenceA, read));
    EXPECT_EQ(read, untouched);
}

TEST_F(StoredPresetTest, AnotherProjectsSequenceIsNotRead) {
    Store(R"({"preset_name":"x"})");
    EXPECT_FALSE(manager.GetEncoderPresetFromSequence(
        ProcessingGuids{Guid(77, 7), kSequenceA.sequenceGuid}, read));
}

TEST_F(StoredPresetTest, EmptyObjectGivesThreeEmptyStringsAndTrue) {
    Store("{}");
    EXPECT_TRUE(manager.GetEncoderPresetFromSequence(kSequenceA, read));
    EXPECT_EQ(read, EncoderPresetAttributes{});
}

TEST_F(StoredPresetTest, MissingAndNullMembersReadAsEmpty) {
    Store(R"({"preset_name":"Only name","preset_path":null})");
    EXPECT_TRUE(manager.GetEncoderPresetFromSequence(kSequenceA, read));
    EXPECT_EQ(read, (EncoderPresetAttributes{U16("Only name"), U16(""), U16("")}));
}

TEST_F(StoredPresetTest, InvalidJSONIsFalseLoggedOnceAndNeverThrows) {
    Store(R"({"preset_name":)");
    bool result = true;
    EXPECT_NO_THROW(result = manager.GetEncoderPresetFromSequence(kSequenceA, read));
    EXPECT_FALSE(result);
    EXPECT_EQ(read, untouched);
    const auto entries = log.Entries();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].severity, kelcore::logging::Severity::Error);
    EXPECT_EQ(entries[0].text.rfind(
                  "vantrokelui::model::ShareManager::GetEncoderPresetFromSequence: ", 0),
              0u)
        << entries[0].text;
}

TEST_F(StoredPresetTest, MemberOfAnotherTypeIsFalseLoggedOnceAndLeavesTheRecord) {
    // The member reader refuses a number where text belongs with a parse error, which is
    // handled like invalid text, even when the members before it were fine.
    Store(R"({"preset_name":"fine","preset_path":42,"file_extension":"mp4"})");
    EXPECT_FALSE(manager.GetEncoderPresetFromSequence(kSequenceA, read));
    EXPECT_EQ(read, untouched);
    ASSERT_EQ(log.Entries().size(), 1u);
    EXPECT_NE(log.Entries()[0].text.find("GetEncoderPresetFromSequence"), std::string::npos);
}

TEST_F(StoredPresetTest, JSONNullIsFalseWithoutALogEntry) {
    Store("null");
    EXPECT_FALSE(manager.GetEncoderPresetFromSequence(kSequenceA, read));
    EXPECT_EQ(read, untouched);
    EXPECT_TRUE(log.Entries().empty());
}

TEST_F(StoredPresetTest, ArrayEscapesAsBadAnyCast) {
    Store(R"(["preset_name","x"])");
    EXPECT_THROW(manager.GetEncoderPresetFromSequence(kSequenceA, read), std::bad_any_cast);
    EXPECT_EQ(read, untouched);
}

TEST_F(StoredPresetTest, MissingValueFunctionRaisesBadFunctionCall) {
    ShareManager bare;
    EXPECT_THROW(bare.GetEncoderPresetFromSequence(kSequenceA, read), std::bad_function_call);
}

// --- copies and threads ----------------------------------------------------------------------

TEST_F(ShareManagerTest, CopyHoldsTheSameJobsFunctionsAndProperties) {
    AddJob("job-a", kSequenceA, Status(EncodingStatus::Encoding));
    host->Put(kSequenceA, kSelectedEncoderPresetKey, u"{}");
    const ShareManager copy(manager);
    EXPECT_EQ(copy.GetJobW(U16("job-a")), manager.GetJobW(U16("job-a")));
    EncoderPresetAttributes preset;
    EXPECT_TRUE(copy.GetEncoderPresetFromSequence(kSequenceA, preset));

    ShareManager assigned;
    assigned = manager;
    assigned.SetEncoderPresets(TwoPresets());
    EXPECT_EQ(panel->GetEncoderPresets().size(), 2u);
    EXPECT_EQ(assigned.GetJobCount(), 1u);
}

// The manager is driven from the main thread and the cloud library's thread at once. The main
// thread keeps going until the other thread is done, so their calls overlap throughout.
TEST_F(ShareManagerTest, MainThreadAndCallbackThreadDoNotRace) {
    host->SetActive(kSequenceA);
    constexpr int kRounds = 1000;
    std::atomic<bool> callbacksDone{false};
    std::latch start(2);
    std::thread callbacks([this, &callbacksDone, &start] {
        start.arrive_and_wait();
        for (int i = 0; i < kRounds; ++i) {
            AddJob("job-" + std::to_string(i),
                   ProcessingGuids{Guid(1, 1), Guid(2, static_cast<std::uint64_t>(i % 3))},
                   Status(EncodingStatus::Uploading, i / double(kRounds)));
            if (const auto job = manager.GetActiveSequenceJob()) {
                job->SetEncodingProgress(0.5);
            }
        }
        callbacksDone = true;
    });
    start.arrive_and_wait();
    do {
        manager.SetCurrentActiveSequenceAndProperties();
        (void)manager.GetShareJobEncodingStatus();
        (void)manager.HasActiveShareJobs();
        (void)manager.GetJobW(U16("job-1"));
        manager.SetEncoderPresets(TwoPresets());
    } while (!callbacksDone.load());
    callbacks.join();
    manager.SetCurrentActiveSequenceAndProperties();
    EXPECT_EQ(manager.GetJobCount(), 3u);  // one job per sequence survives
    // Sequence A is Guid(2, 1): its last job is the last i below 1000 with i % 3 == 1.
    EXPECT_EQ(manager.GetActiveSequenceJobID(), U16("job-997"));
    Pump();
}

}  // namespace
}  // namespace vantrokelui::model
