// The developer's screen: where its controls stand, what each button does, and what follows the
// view model (the sign-in buttons follow IsLoggedIn, the name follows the current user).
#include <memory>
#include <string>
#include <vector>

#include <QTest>

#include <gtest/gtest.h>

#include <kelcore/debug/Trace.h>
#include <kelcore/logging/CapturedLogForTesting.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/view/DebugView.h>

#include "StatusViewFixture.h"

namespace vantrokelui::view::testing {
namespace {

class DebugViewTest : public StatusViewFixture {
protected:
    void SetUp() override {
        StatusViewFixture::SetUp();
        viewModel->SetCurrentViewID(ViewID::DebugView);
        Pump();
    }

    static void Click(const boost::intrusive_ptr<kelui::controls::UI_TextButton>& button) {
        QTest::mouseClick(button->GetWidget(), Qt::LeftButton);
    }
};

TEST_F(DebugViewTest, PlacesItsControlsForTheWidthOfTheView) {
    auto screen = MakeView<DebugView>();
    EXPECT_EQ(sharedui::GetRecommendedSize(screen), (PointT<float>{340.0f, 240.0f}));
    EXPECT_EQ(screen->GetTitleText()->UI_GetLocalRectF(), (RectT<float>{15, 12, 310, 20}));
    EXPECT_EQ(screen->GetLoginButton()->UI_GetLocalRectF(), (RectT<float>{15, 52, 60, 24}));
    EXPECT_EQ(screen->GetLogoutButton()->UI_GetLocalRectF(), (RectT<float>{265, 52, 60, 24}));
    EXPECT_EQ(screen->GetNameLabel()->UI_GetLocalRectF(), (RectT<float>{15, 92, 340, 24}));
    EXPECT_EQ(screen->GetNameValue()->UI_GetLocalRectF(), (RectT<float>{15, 112, 340, 24}));
    EXPECT_EQ(screen->GetSendButton()->UI_GetLocalRectF(), (RectT<float>{15, 152, 120, 24}));
    EXPECT_EQ(screen->GetClearButton()->UI_GetLocalRectF(), (RectT<float>{205, 152, 120, 24}));
    EXPECT_EQ(screen->GetTraceButton()->UI_GetLocalRectF(), (RectT<float>{15, 192, 150, 24}));

    screen->UI_SetLocalRectF({0.0f, 0.0f, 400.0f, 240.0f});
    EXPECT_EQ(screen->GetTitleText()->UI_GetLocalRectF(), (RectT<float>{15, 12, 370, 20}));
    EXPECT_EQ(screen->GetLogoutButton()->UI_GetLocalRectF(), (RectT<float>{325, 52, 60, 24}));
    EXPECT_EQ(screen->GetNameValue()->UI_GetLocalRectF(), (RectT<float>{15, 112, 400, 24}));
    EXPECT_EQ(screen->GetClearButton()->UI_GetLocalRectF(), (RectT<float>{265, 152, 120, 24}));
    EXPECT_EQ(screen->GetSendButton()->UI_GetLocalRectF(), (RectT<float>{15, 152, 120, 24}));
}

TEST_F(DebugViewTest, ItsTextsArePlainAndItsButtonsBold) {
    auto screen = MakeView<DebugView>();
    EXPECT_EQ(screen->GetTitleText()->GetText(), u"Review in Vantro DEBUG view");
    EXPECT_EQ(screen->GetTitleText()->GetFontStyleName(), "Bold");
    EXPECT_EQ(screen->GetNameLabel()->GetText(), u"User Name:");
    EXPECT_EQ(screen->GetNameLabel()->GetFontStyleName(), "Bold");
    EXPECT_NE(screen->GetNameValue()->GetFontStyleName(), "Bold");
    const std::vector<std::pair<boost::intrusive_ptr<kelui::controls::UI_TextButton>, string>>
        buttons{{screen->GetLoginButton(), u"Login"},
                {screen->GetLogoutButton(), u"Logout"},
                {screen->GetSendButton(), u"Send to Sarvex"},
                {screen->GetClearButton(), u"Clear Sequence Settings"},
                {screen->GetTraceButton(), u"Trace To Console"}};
    for (const auto& [button, text] : buttons) {
        EXPECT_EQ(button->GetText(), text);
        EXPECT_EQ(button->GetFontStyleName(), "Bold");
        EXPECT_TRUE(button->UI_IsShown());
        EXPECT_EQ(AccessibleName(button), text);
    }
}

TEST_F(DebugViewTest, TheNameReadsEmptyUntilTheUserIsDeliveredAndThenFollowsTheCurrentUser) {
    auto ann = std::make_shared<VantroUser>();
    ann->SetName(u"ann");
    viewModel->SetUser(ann);
    boost::intrusive_ptr<DebugView> screen(new DebugView(viewModel));
    EXPECT_EQ(screen->GetNameValue()->GetText(), u"--empty--");
    Pump();
    EXPECT_EQ(screen->GetNameValue()->GetText(), u"ann");
    ann->SetName(u"ann b.");
    Pump();
    EXPECT_EQ(screen->GetNameValue()->GetText(), u"ann b.");

    auto bea = std::make_shared<VantroUser>();
    bea->SetName(u"bea");
    viewModel->SetUser(bea);
    Pump();
    EXPECT_EQ(screen->GetNameValue()->GetText(), u"bea");
    ann->SetName(u"ann c.");  // no longer the current user
    Pump();
    EXPECT_EQ(screen->GetNameValue()->GetText(), u"bea");
}

TEST_F(DebugViewTest, LoginIsEnabledOnlySignedOutAndLogoutOnlySignedIn) {
    viewModel->SetIsLoggedIn(false);
    auto screen = MakeView<DebugView>();
    EXPECT_TRUE(screen->GetLoginButton()->UI_IsEnabled());
    EXPECT_FALSE(screen->GetLogoutButton()->UI_IsEnabled());
    viewModel->SetIsLoggedIn(true);
    Pump();
    EXPECT_FALSE(screen->GetLoginButton()->UI_IsEnabled());
    EXPECT_TRUE(screen->GetLogoutButton()->UI_IsEnabled());
    viewModel->SetIsLoggedIn(false);
    Pump();
    EXPECT_TRUE(screen->GetLoginButton()->UI_IsEnabled());
    EXPECT_FALSE(screen->GetLogoutButton()->UI_IsEnabled());
}

TEST_F(DebugViewTest, LoginSignsInAndMovesToTheShareScreen) {
    UseTheDatastore();
    auto screen = MakeView<DebugView>();
    Click(screen->GetLoginButton());
    ASSERT_NO_FATAL_FAILURE(PumpUntil([&] { return View() == ViewID::ReviewInVantro; }));
    EXPECT_EQ(viewModel->GetUser()->GetID(), SignedInUserID());
    EXPECT_EQ(screen->GetNameValue()->GetText(), u"ann");
}

TEST_F(DebugViewTest, LogoutSignsOutAndClosesThePanel) {
    UseTheDatastore();
    viewModel->SetIsLoggedIn(true);
    auto screen = MakeView<DebugView>();
    Click(screen->GetLogoutButton());
    Pump();
    EXPECT_EQ(datastore->SignOuts(), (std::vector<std::string>{"SignOutJwt", "SignOutOAuth2"}));
    EXPECT_FALSE(viewModel->GetIsLoggedIn());
    EXPECT_EQ(View(), ViewID::None);
}

TEST_F(DebugViewTest, SendStartsAShareOfTheActiveSequence) {
    // What an earlier share left with the sequence, so the share goes straight to the encoder.
    const auto set = host->SetSequenceValueFn();
    model::SetSequenceGuid(set, guids.projectGuid, guids.sequenceGuid, model::kUploadFolderGuidKey,
                           kelcore::utility::Guid::CreateUnique());
    model::SetSequenceGuid(set, guids.projectGuid, guids.sequenceGuid, model::kReviewLinkGuidKey,
                           kelcore::utility::Guid::CreateUnique());
    model::SetSequenceString(set, guids.projectGuid, guids.sequenceGuid, model::kReviewLinkURLKey,
                             u"https://review.example/r/abc");
    auto preset = EncoderPresetModel::Create();
    preset->SetPresetName(u"H.264 Match Source");
    preset->SetPresetPath(u"/presets/h264-match.epr");
    preset->SetExtension(u"mp4");
    viewModel->SetEncoderPresets({preset});
    auto screen = MakeView<DebugView>();
    ASSERT_TRUE(Renders().empty());

    Click(screen->GetSendButton());
    ASSERT_NO_FATAL_FAILURE(PumpUntil([&] { return !Renders().empty(); }));
    ASSERT_EQ(Renders().size(), 1u);
    EXPECT_EQ(Renders()[0].presetPath, u"/presets/h264-match.epr");
    EXPECT_EQ(View(), ViewID::EncodingQueued);
}

TEST_F(DebugViewTest, ClearRemovesEveryStoredSettingOfTheActiveSequence) {
    for (const auto key : model::kAllSequenceSettingKeys) {
        host->Put(guids, key, u"stored");
    }
    const model::ProcessingGuids other{kelcore::utility::Guid::CreateUnique(),
                                       kelcore::utility::Guid::CreateUnique()};
    host->Put(other, model::kReviewLinkURLKey, u"https://review.example/r/other");
    auto screen = MakeView<DebugView>();

    Click(screen->GetClearButton());
    Pump();
    for (const auto key : model::kAllSequenceSettingKeys) {
        EXPECT_FALSE(host->Find(guids, key).has_value())
            << kelcore::string::UTF16toStdString(string(key));
    }
    EXPECT_TRUE(host->Find(other, model::kReviewLinkURLKey).has_value())
        << "only the active sequence is cleared";
}

TEST_F(DebugViewTest, TraceWritesThePanelsStateToTheTrace) {
    viewModel->SetReviewLinkURL(u"https://review.example/r/abc");
    auto screen = MakeView<DebugView>();
    kelcore::logging::CapturedLogForTesting log;
    kelcore::debug::SetTraceLevel("VantroNative", 5);
    Click(screen->GetTraceButton());
    kelcore::debug::ResetTraceSettings();

    const auto entries = log.Entries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].text.rfind("[VantroNative] ShareForReviewViewModel\nCurrentViewID :  "
                                    "DebugView\nReviewLinkURL :  https://review.example/r/abc",
                                    0),
              0u)
        << entries[0].text;
    EXPECT_EQ(entries[1].text, "[VantroNative] ShareForReviewViewModel nodes count = 1");
}

}  // namespace
}  // namespace vantrokelui::view::testing
