// The sign-in screen: what it shows with each of its two switches, where it puts it, that both
// sign-in buttons start the same sign-in, and that a finished sign-in moves the panel on. The
// sign-in goes to the older client library's datastore, replaced by a stand-in that knows who is
// signed in, so no browser opens.
#include <memory>
#include <string>
#include <vector>

#include <QTest>

#include <gtest/gtest.h>

#include <kelcore/utility/Guid.h>
#include <kelcore/utility/OpenFileInDefaultApplication.h>
#include <vantrokelui/sharedui/ResourceManager.h>
#include <vantrokelui/view/SigninView.h>

#include "StatusViewFixture.h"

namespace vantrokelui::view::testing {
namespace {

/// Records what the desktop would have opened, instead of starting a browser, while it lives.
struct RecordingOpener {
    RecordingOpener() {
        kelcore::utility::SetDefaultApplicationOpener([this](const std::string& url) {
            opened.push_back(url);
            return true;
        });
    }
    ~RecordingOpener() { kelcore::utility::SetDefaultApplicationOpener({}); }
    RecordingOpener(const RecordingOpener&) = delete;
    RecordingOpener& operator=(const RecordingOpener&) = delete;

    std::vector<std::string> opened;
};

class SigninViewTest : public StatusViewFixture {
protected:
    void SetUp() override {
        StatusViewFixture::SetUp();
        viewModel->SetCurrentViewID(ViewID::SigninPrompt);
        Pump();
    }
};

TEST_F(SigninViewTest, ShowsTheSequenceThePromptAndTheButtonWithBothSwitchesOff) {
    viewModel->SetAssetTypeIcon(
        sharedui::BindImageSupplyFunction("S_Sequence_16", &sharedui::GetResourceManager));
    auto screen = MakeView<SigninView>();
    const auto& label = screen->GetWorkflowLabel();
    EXPECT_TRUE(label->GetIconImage()->UI_IsShown());
    EXPECT_EQ(label->GetNameText()->GetText(), u"Cut 1");
    EXPECT_EQ(label->GetMenuPopup()->GetItemCount(), 0);
    EXPECT_FALSE(label->GetMenuPopup()->UI_IsShown());

    EXPECT_EQ(screen->GetLongDescriptionText()->GetText(),
              Localized("$$$/Corvane/vantrokelui/view/VantroShare/SigninPromptView/"
                        "SignintoVantroLongDescription=Sign in to Vantro to create a review link "
                        "to share with your team members."));
    EXPECT_TRUE(screen->GetLongDescriptionText()->IsMultiLine());
    EXPECT_TRUE(screen->GetLongDescriptionText()->UI_IsShown());

    const auto& button = screen->GetSigninButton();
    EXPECT_EQ(button->GetText(), u"Sign in to Vantro");
    EXPECT_EQ(button->GetFontStyleName(), "Bold");
    EXPECT_TRUE(button->UI_IsShown());
    EXPECT_TRUE(button->UI_IsEnabled());
    EXPECT_EQ(AccessibleName(button), u"Sign in to Vantro");
    EXPECT_EQ(button->GetWidget()->focusPolicy(), Qt::StrongFocus);

    for (const boost::intrusive_ptr<kelui::ui::UI_Node>& hidden :
         std::vector<boost::intrusive_ptr<kelui::ui::UI_Node>>{
             screen->GetTermsText(), screen->GetTermsLink(), screen->GetPrivacyLink(),
             screen->GetVerticalBarText(), screen->GetAltDescriptionText(),
             screen->GetAltSigninButton()}) {
        EXPECT_FALSE(hidden->UI_IsShown());
    }

    viewModel->SetActiveAssetName(u"Cut 2");
    Pump();
    EXPECT_EQ(label->GetNameText()->GetText(), u"Cut 2");
}

TEST_F(SigninViewTest, WithThePolicyHiddenTheButtonFollowsTheDescriptionAndTheScreenEndsBelowIt) {
    auto screen = MakeView<SigninView>();
    const float a = sharedui::MeasureTextHeight(screen->GetLongDescriptionText(), 310.0f);
    const PointT<float> s = sharedui::GetRecommendedSize(screen->GetSigninButton());
    EXPECT_EQ(screen->GetWorkflowLabel()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 10.0f, 310.0f, 20.0f}));
    EXPECT_EQ(screen->GetLongDescriptionText()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, 42.0f, 310.0f, a}));
    const float buttonTop = 42.0f + a + 3.0f;
    EXPECT_EQ(screen->GetSigninButton()->UI_GetLocalRectF(),
              (RectT<float>{325.0f - s.x, buttonTop, s.x, s.y}));
    EXPECT_EQ(sharedui::GetRecommendedSize(screen),
              (PointT<float>{340.0f, buttonTop + s.y + 15.0f}));
    EXPECT_EQ(screen->UI_GetLocalRectF(),
              (RectT<float>{0.0f, 0.0f, 340.0f, buttonTop + s.y + 15.0f}));
    // The hidden parts never got a place.
    EXPECT_EQ(screen->GetTermsText()->UI_GetLocalRectF(), (RectT<float>{}));
    EXPECT_EQ(screen->GetTermsLink()->UI_GetLocalRectF(), (RectT<float>{}));
    EXPECT_EQ(screen->GetAltSigninButton()->UI_GetLocalRectF(), (RectT<float>{}));
    const auto layout = screen->ComputePanelLayout();
    EXPECT_FALSE(layout.termsText.has_value());
    EXPECT_FALSE(layout.altSigninButton.has_value());
}

TEST_F(SigninViewTest, WithThePolicyVisibleTheTermsAndTheirLinksStandAboveTheButton) {
    SetKey("VantroNative.SignIn.PolicyLabelVisible", "true");
    auto screen = MakeView<SigninView>();
    EXPECT_TRUE(screen->GetSigninViewModel()->GetPolicyVisible());
    const float a = sharedui::MeasureTextHeight(screen->GetLongDescriptionText(), 310.0f);
    const float b = sharedui::MeasureTextHeight(screen->GetTermsText(), 310.0f);
    const float wt = sharedui::GetRecommendedSize(screen->GetTermsLink()).x;
    const float wb = sharedui::GetRecommendedSize(screen->GetVerticalBarText()).x;
    const float wp = sharedui::GetRecommendedSize(screen->GetPrivacyLink()).x;
    const PointT<float> s = sharedui::GetRecommendedSize(screen->GetSigninButton());

    const float termsTop = 42.0f + a + 14.0f;
    EXPECT_EQ(screen->GetTermsText()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, termsTop, 310.0f, b}));
    const float row = termsTop + b + 13.0f;
    EXPECT_EQ(screen->GetTermsLink()->UI_GetLocalRectF(), (RectT<float>{13.0f, row, wt, 20.0f}));
    EXPECT_EQ(screen->GetVerticalBarText()->UI_GetLocalRectF(),
              (RectT<float>{15.0f + wt, row, wb, 20.0f}));
    EXPECT_EQ(screen->GetPrivacyLink()->UI_GetLocalRectF(),
              (RectT<float>{15.0f + wt + wb, row, wp, 20.0f}));
    const float buttonTop = row + 35.0f + 3.0f;
    EXPECT_EQ(screen->GetSigninButton()->UI_GetLocalRectF(),
              (RectT<float>{325.0f - s.x, buttonTop, s.x, s.y}));
    EXPECT_EQ(sharedui::GetRecommendedSize(screen),
              (PointT<float>{340.0f, buttonTop + s.y + 15.0f}));

    for (const boost::intrusive_ptr<kelui::ui::UI_Node>& shown :
         std::vector<boost::intrusive_ptr<kelui::ui::UI_Node>>{
             screen->GetTermsText(), screen->GetTermsLink(), screen->GetPrivacyLink(),
             screen->GetVerticalBarText()}) {
        EXPECT_TRUE(shown->UI_IsShown());
    }
    EXPECT_EQ(screen->GetTermsText()->GetText(),
              u"By continuing, you agree to the Vantro Terms of Service and Privacy Policy.");
    EXPECT_TRUE(screen->GetTermsText()->IsMultiLine());
    EXPECT_EQ(screen->GetTermsLink()->GetText(), u"Terms of Service");
    EXPECT_EQ(screen->GetPrivacyLink()->GetText(), u"Privacy Policy");
    EXPECT_EQ(screen->GetVerticalBarText()->GetText(), u"|");
    EXPECT_EQ(screen->GetTermsLink()->GetURL(), std::string(kServiceWebURL) + "/legal/terms");
    EXPECT_EQ(screen->GetPrivacyLink()->GetURL(), std::string(kServiceWebURL) + "/legal/privacy");
    EXPECT_EQ(AccessibleName(screen->GetTermsLink()), u"Terms of Service");
}

TEST_F(SigninViewTest, TheLinksOpenTheServicesTermsAndPrivacyPagesAndNothingElse) {
    SetKey("VantroNative.SignIn.PolicyLabelVisible", "true");
    UseTheDatastore();
    RecordingOpener opener;
    auto screen = MakeView<SigninView>();
    QTest::mouseClick(screen->GetTermsLink()->GetWidget(), Qt::LeftButton, {}, QPoint(8, 10));
    QTest::mouseClick(screen->GetPrivacyLink()->GetWidget(), Qt::LeftButton, {}, QPoint(8, 10));
    Pump();
    EXPECT_EQ(opener.opened, (std::vector<std::string>{"https://review.example/legal/terms",
                                                       "https://review.example/legal/privacy"}));
    EXPECT_EQ(View(), ViewID::SigninPrompt) << "a link is no sign-in";
    EXPECT_EQ(datastore->CurrentUserRequests(), 0);
}

TEST_F(SigninViewTest, HidingThePolicyMovesTheButtonUpByTheWholeBlockAndLeavesTheHiddenParts) {
    SetKey("VantroNative.SignIn.PolicyLabelVisible", "true");
    auto screen = MakeView<SigninView>();
    const float b = sharedui::MeasureTextHeight(screen->GetTermsText(), 310.0f);
    const RectT<float> buttonBefore = screen->GetSigninButton()->UI_GetLocalRectF();
    const float heightBefore = sharedui::GetRecommendedSize(screen).y;
    const RectT<float> termsBefore = screen->GetTermsText()->UI_GetLocalRectF();
    const RectT<float> linkBefore = screen->GetTermsLink()->UI_GetLocalRectF();
    const RectT<float> barBefore = screen->GetVerticalBarText()->UI_GetLocalRectF();
    const RectT<float> privacyBefore = screen->GetPrivacyLink()->UI_GetLocalRectF();
    const bool invalidatedBefore = viewModel->GetInvalidateParentForChild();

    screen->GetSigninViewModel()->SetPolicyVisible(false);
    Pump();

    // The block is 14 above the terms, the terms, 13 to the links, and 35 from the links on.
    const float block = 14.0f + b + 13.0f + 35.0f;
    EXPECT_EQ(screen->GetSigninButton()->UI_GetLocalRectF().y, buttonBefore.y - block);
    EXPECT_EQ(sharedui::GetRecommendedSize(screen).y, heightBefore - block);
    EXPECT_NE(viewModel->GetInvalidateParentForChild(), invalidatedBefore)
        << "the section must be told that the screen's height changed";
    EXPECT_FALSE(screen->GetTermsText()->UI_IsShown());
    EXPECT_FALSE(screen->GetTermsLink()->UI_IsShown());
    EXPECT_FALSE(screen->GetPrivacyLink()->UI_IsShown());
    EXPECT_FALSE(screen->GetVerticalBarText()->UI_IsShown());
    EXPECT_EQ(screen->GetTermsText()->UI_GetLocalRectF(), termsBefore);
    EXPECT_EQ(screen->GetTermsLink()->UI_GetLocalRectF(), linkBefore);
    EXPECT_EQ(screen->GetVerticalBarText()->UI_GetLocalRectF(), barBefore);
    EXPECT_EQ(screen->GetPrivacyLink()->UI_GetLocalRectF(), privacyBefore);

    // And back: the block returns where it was.
    screen->GetSigninViewModel()->SetPolicyVisible(true);
    Pump();
    EXPECT_TRUE(screen->GetTermsLink()->UI_IsShown());
    EXPECT_EQ(screen->GetSigninButton()->UI_GetLocalRectF(), buttonBefore);
    EXPECT_EQ(sharedui::GetRecommendedSize(screen).y, heightBefore);
}

TEST_F(SigninViewTest, WithTheAltSigninVisibleItsTextAndButtonShareARowBelowTheMainButton) {
    SetKey("VantroNative.SignIn.AltSigninVisible", "true");
    auto screen = MakeView<SigninView>();
    const RectT<float> main = screen->GetSigninButton()->UI_GetLocalRectF();
    const PointT<float> alt = sharedui::GetRecommendedSize(screen->GetAltSigninButton());
    const float row = main.y + main.height + 15.0f;
    EXPECT_EQ(screen->GetAltDescriptionText()->UI_GetLocalRectF(),
              (RectT<float>{15.0f, row, 310.0f - alt.x, alt.y}));
    EXPECT_EQ(screen->GetAltSigninButton()->UI_GetLocalRectF(),
              (RectT<float>{325.0f - alt.x, row, alt.x, alt.y}));
    EXPECT_EQ(sharedui::GetRecommendedSize(screen), (PointT<float>{340.0f, row + alt.y + 15.0f}));
    EXPECT_TRUE(screen->GetAltDescriptionText()->UI_IsShown());
    EXPECT_TRUE(screen->GetAltSigninButton()->UI_IsShown());
    EXPECT_EQ(screen->GetAltDescriptionText()->GetText(), u"Already have a Vantro account?");
    EXPECT_EQ(screen->GetAltSigninButton()->GetText(), u"Sign in");
    EXPECT_TRUE(screen->GetAltSigninButton()->UI_IsEnabled());
}

TEST_F(SigninViewTest, WithoutTheAltSigninTheScreenEndsBelowTheMainButton) {
    SetKey("VantroNative.SignIn.AltSigninVisible", "true");
    auto screen = MakeView<SigninView>();
    const float withAlt = sharedui::GetRecommendedSize(screen).y;
    const bool invalidatedBefore = viewModel->GetInvalidateParentForChild();

    screen->GetSigninViewModel()->SetAltSigninVisible(false);
    Pump();
    const RectT<float> main = screen->GetSigninButton()->UI_GetLocalRectF();
    EXPECT_EQ(sharedui::GetRecommendedSize(screen).y, main.y + main.height + 15.0f);
    EXPECT_LT(sharedui::GetRecommendedSize(screen).y, withAlt);
    EXPECT_FALSE(screen->GetAltDescriptionText()->UI_IsShown());
    EXPECT_FALSE(screen->GetAltSigninButton()->UI_IsShown());
    EXPECT_NE(viewModel->GetInvalidateParentForChild(), invalidatedBefore);
}

TEST_F(SigninViewTest, TheSwitchesAreReadWhenTheScreenIsMade) {
    auto before = MakeView<SigninView>();
    SetKey("VantroNative.SignIn.PolicyLabelVisible", "true");
    SetKey("VantroNative.SignIn.AltSigninVisible", "true");
    Pump();
    EXPECT_FALSE(before->GetTermsText()->UI_IsShown());
    EXPECT_FALSE(before->GetAltSigninButton()->UI_IsShown());
    auto after = MakeView<SigninView>();
    EXPECT_TRUE(after->GetTermsText()->UI_IsShown());
    EXPECT_TRUE(after->GetAltSigninButton()->UI_IsShown());
}

TEST_F(SigninViewTest, BothSignInButtonsStartTheSameSignIn) {
    SetKey("VantroNative.SignIn.AltSigninVisible", "true");
    UseTheDatastore();
    std::vector<std::shared_ptr<VantroUser>> users;
    const auto userBinding = viewModel->AddUserBinding(
        [&users](const std::shared_ptr<VantroUser>& user) { users.push_back(user); });
    auto screen = MakeView<SigninView>();
    users.clear();

    QTest::mouseClick(screen->GetSigninButton()->GetWidget(), Qt::LeftButton);
    ASSERT_NO_FATAL_FAILURE(
        PumpUntil([&] { return users.size() == 1 && View() == ViewID::ReviewInVantro; }));
    EXPECT_EQ(users[0]->GetID(), SignedInUserID());

    viewModel->SetCurrentViewID(ViewID::SigninPrompt);
    QTest::mouseClick(screen->GetAltSigninButton()->GetWidget(), Qt::LeftButton);
    ASSERT_NO_FATAL_FAILURE(
        PumpUntil([&] { return users.size() == 2 && View() == ViewID::ReviewInVantro; }));
    EXPECT_EQ(users[1]->GetID(), SignedInUserID());
    EXPECT_NE(users[1], users[0]) << "each sign-in answers with a user of its own";
    EXPECT_EQ(viewModel->GetUser(), users[1]);
}

TEST_F(SigninViewTest, TheKeyboardSignsInFromTheFocusedButton) {
    UseTheDatastore();
    auto screen = MakeView<SigninView>();
    QWidget* button = screen->GetSigninButton()->GetWidget();
    root->GetWidget()->activateWindow();
    button->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(button->hasFocus());
    QTest::keyClick(button, Qt::Key_Space);
    ASSERT_NO_FATAL_FAILURE(PumpUntil([&] { return View() == ViewID::ReviewInVantro; }));
    EXPECT_EQ(viewModel->GetUser()->GetID(), SignedInUserID());
}

TEST_F(SigninViewTest, ASignedInReportMovesThePanelToTheShareScreenAndASignedOutOneDoesNot) {
    auto screen = MakeView<SigninView>();
    viewModel->SetIsLoggedIn(false);
    Pump();
    EXPECT_EQ(View(), ViewID::SigninPrompt);
    viewModel->SetIsLoggedIn(true);
    Pump();
    EXPECT_TRUE(screen->GetSigninViewModel()->GetIsLoggedIn());
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
}

TEST_F(SigninViewTest, AScreenMadeForASignedInUserMovesOnAtOnce) {
    viewModel->SetIsLoggedIn(true);
    MakeView<SigninView>();
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
}

TEST_F(SigninViewTest, TheScreensViewModelLivesAndDiesWithTheScreen) {
    std::weak_ptr<viewmodel::SigninViewModel> signin;
    {
        auto screen = MakeView<SigninView>();
        signin = screen->GetSigninViewModel();
        ASSERT_FALSE(signin.expired());
        root->ChildRemove(view);
        view.reset();
    }
    Pump();
    EXPECT_TRUE(signin.expired());
    // A late report reaches nobody: the panel stays where it is.
    viewModel->SetIsLoggedIn(true);
    Pump();
    EXPECT_EQ(View(), ViewID::SigninPrompt);
}

}  // namespace
}  // namespace vantrokelui::view::testing
