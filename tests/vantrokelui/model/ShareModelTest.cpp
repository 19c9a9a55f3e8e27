#include <vantrokelui/model/ShareModel.h>

#include <future>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <kelcore/appstatemanager/AppStateManager.h>
#include <kelcore/config/ResultCode.h>
#include <kelcore/config/kel_exception.h>
#include <support/MainThreadFixture.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareManager.h>

#include "vantrokelui/support/FakeSequenceHost.h"
#include "vantrokelui/support/PanelProperties.h"

namespace vantrokelui::model {
namespace {

using kelcore::utility::Guid;
using testing::FakeSequenceHost;
using testing::PanelProperties;
using testing::U16;

const ProcessingGuids kSequence{Guid(1, 1), Guid(2, 1)};

class ShareModel : public testsupport::MainThreadFixture {
protected:
    void TearDown() override {
        MainThreadFixture::TearDown();
        kelcore::appstatemanager::ResetForTesting();
    }

    void InstallHost() {
        SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                            host->SetSequenceValueFn(), host->ClearSequenceValueFn());
    }
    void InstallPanel() {
        SetNotifyingProperties({}, std::weak_ptr<ActiveAssetNameNotifyingProperty>(panel),
                               std::weak_ptr<ActiveAssetDirtyNotifyingProperty>(panel),
                               std::weak_ptr<ReviewLinkURLNotifyingProperty>(panel),
                               std::weak_ptr<CurrentViewIDNotifyingProperty>(panel),
                               std::weak_ptr<EncodingStatusNotifyingProperty>(panel),
                               std::weak_ptr<EncodingProgressNotifyingProperty>(panel),
                               std::weak_ptr<ProcessingRemainingTimeNotifyingProperty>(panel),
                               std::weak_ptr<UploadingSpeedNotifyingProperty>(panel),
                               std::weak_ptr<EncoderPresetsNotifyingProperty>(panel),
                               std::weak_ptr<SelectedEncoderPresetNotifyingProperty>(panel),
                               std::weak_ptr<CreateNewLinkModeNotifyingProperty>(panel));
    }

    std::shared_ptr<FakeSequenceHost> host = FakeSequenceHost::Create();
    std::shared_ptr<PanelProperties> panel = PanelProperties::Create();
};

void ExpectNullPointerNamingShareManager(const std::function<void()>& call) {
    try {
        call();
        ADD_FAILURE() << "no exception";
    } catch (const kelcore::config::kel_exception& error) {
        EXPECT_EQ(error.GetCode(), kelcore::config::kResultNullPointer);
        EXPECT_NE(error.GetText().find("ShareManager"), std::string::npos) << error.GetText();
    }
}

TEST_F(ShareModel, EveryCallReachesTheOneManager) {
    ShareManager& first = ShareManager::GetInstance();
    auto other = std::async(std::launch::async, [] { return &ShareManager::GetInstance(); });
    EXPECT_EQ(other.get(), &first);
    EXPECT_EQ(&ShareManager::GetInstance(), &first);
}

TEST_F(ShareModel, FreeFunctionsForwardToTheManager) {
    InstallHost();
    InstallPanel();
    ShareManager& manager = ShareManager::GetInstance();
    EXPECT_FALSE(HasActiveShareJobs());

    manager.AddJobToMap(U16("job-1"), kSequence, EncodingAttributes{EncodingStatus::Encoding, 0.3},
                        ReviewAttributes{}, U16("/out.mp4"));
    EXPECT_TRUE(HasActiveShareJobs());
    host->SetActive(kSequence);
    SetCurrentActiveSequenceAndProperties();
    EXPECT_EQ(GetActiveSequenceJobID(), U16("job-1"));
    EXPECT_EQ(GetActiveSequenceJob(), manager.GetJobW(U16("job-1")));
    EXPECT_EQ(GetShareJobEncodingStatus(), EncodingStatus::Encoding);
    EXPECT_EQ(panel->GetEncodingProgress(), 0.3);

    SetEncoderPresets({{U16("H.264"), U16("/p/h264.epr"), U16("mp4")}});
    ASSERT_EQ(panel->GetEncoderPresets().size(), 1u);
    EXPECT_EQ(panel->GetSelectedEncoderPreset()->GetPresetPath(), U16("/p/h264.epr"));

    host->Put(kSequence, kSelectedEncoderPresetKey,
              FormatEncoderPresetJSON({U16("ProRes"), U16("/p/prores.epr"), U16("mov")}));
    EncoderPresetAttributes preset;
    EXPECT_TRUE(GetEncoderPresetFromSequence(kSequence, preset));
    EXPECT_EQ(preset.presetName, U16("ProRes"));
    Pump();
}

TEST_F(ShareModel, StateNineDestroysTheManagerAndLaterCallsRaiseNullPointer) {
    ShareManager::GetInstance().AddJobToMap(U16("job-1"), kSequence, EncodingAttributes{},
                                            ReviewAttributes{}, U16("/out.mp4"));
    kelcore::appstatemanager::SetAppState(8);
    EXPECT_TRUE(HasActiveShareJobs());  // still the same manager below state 9

    kelcore::appstatemanager::SetAppState(ShareManager::kDestroyAppState);
    ExpectNullPointerNamingShareManager([] { ShareManager::GetInstance(); });
    ExpectNullPointerNamingShareManager([] { HasActiveShareJobs(); });
    ExpectNullPointerNamingShareManager([] { SetCurrentActiveSequenceAndProperties(); });
    ExpectNullPointerNamingShareManager([] { SetEncoderPresets({}); });
}

TEST_F(ShareModel, ANeverMadeManagerIsRefusedAfterStateNine) {
    kelcore::appstatemanager::SetAppState(10);
    ExpectNullPointerNamingShareManager([] { GetShareJobEncodingStatus(); });
}

TEST_F(ShareModel, AfterAResetAFreshEmptyManagerIsMade) {
    ShareManager::GetInstance().AddJobToMap(U16("job-1"), kSequence, EncodingAttributes{},
                                            ReviewAttributes{}, U16("/out.mp4"));
    kelcore::appstatemanager::SetAppState(ShareManager::kDestroyAppState);
    kelcore::appstatemanager::ResetForTesting();
    // The jobs died with the old instance; nothing is kept across its end.
    EXPECT_FALSE(HasActiveShareJobs());
}

}  // namespace
}  // namespace vantrokelui::model
