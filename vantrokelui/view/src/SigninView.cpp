#include <vantrokelui/view/SigninView.h>

#include <kelui/ui/WeakNodeFunction.h>

#include <string>

#include <vantrocommon/ServiceEndpoint.h>
#include <vantrokelui/sharedui/Measuring.h>

#include "StatusViewSupport.h"

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {

constexpr float kGapBelowLabel = 12.0f;
constexpr float kGapAboveTerms = 14.0f;
constexpr float kGapAboveLinks = 13.0f;
// The links carry a 2-pixel focus margin, so at 13 their text lines up with the column.
constexpr float kLinkLeft = 13.0f;
constexpr float kLinkHeight = 20.0f;
constexpr float kLinkRowAdvance = 35.0f;
constexpr float kGapAboveButton = 3.0f;
constexpr float kGapAboveAltSignin = 15.0f;

std::string ServicePage(const char* path) {
    return vantrocommon::ServiceEndpoint::Resolve().webBase + path;
}

}  // namespace

SigninView::SigninView(std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : PopupBaseView(std::move(model)),
      signinViewModel(viewmodel::SigninViewModel::Create(viewModel)),
      workflowLabel(new WorkflowLabel(viewModel->GetAssetTypeIcon(), GetPreShowMenuFunction(),
                                      GetPostShowMenuFunction(), {})),
      longDescriptionText(new kelui::controls::UI_StaticText),
      termsText(new kelui::controls::UI_StaticText),
      signinButton(new kelui::controls::UI_TextButton),
      altDescriptionText(new kelui::controls::UI_StaticText),
      altSigninButton(new kelui::controls::UI_TextButton),
      termsLink(new kelui::controls::UI_HotTextURL),
      privacyLink(new kelui::controls::UI_HotTextURL),
      verticalBarText(new kelui::controls::UI_StaticText) {
    bindings.push_back(signinViewModel->AddActiveAssetNameBinding(
        kelui::ui::WeakNodeFunction(workflowLabel.get(), &WorkflowLabel::SetName)));
    workflowLabel->UI_Show(true);
    ChildPushBack(workflowLabel);

    longDescriptionText->SetText(
        detail::Localized("$$$/Corvane/vantrokelui/view/VantroShare/SigninPromptView/"
                          "SignintoVantroLongDescription=Sign in to Vantro to create a review "
                          "link to share with your team members."));
    longDescriptionText->SetMultiLine(true);
    longDescriptionText->UI_Show(true);
    ChildPushBack(longDescriptionText);

    // The optional parts start as their switches stand, so the first layout is already right;
    // the bindings then follow any later change of a switch.
    const bool policyVisible = signinViewModel->GetPolicyVisible();
    const bool altSigninVisible = signinViewModel->GetAltSigninVisible();

    termsText->SetText(
        detail::Localized("$$$/Corvane/vantrokelui/view/VantroShare/SigninPromptView/"
                          "SignintoVantroTermsOfService=By continuing, you agree to the Vantro "
                          "Terms of Service and Privacy Policy."));
    termsText->SetMultiLine(true);
    termsText->UI_Show(policyVisible);
    ChildPushBack(termsText);

    termsLink->SetURL(ServicePage(kTermsPath));
    termsLink->SetText(
        detail::Localized("$$$/Corvane/vantrokelui/view/VantroShare/SigninPromptView/"
                          "SignintoVantroTermsOfServiceLink=Terms of Service"));
    termsLink->UI_Show(policyVisible);
    ChildPushBack(termsLink);

    privacyLink->SetURL(ServicePage(kPrivacyPath));
    privacyLink->SetText(
        detail::Localized("$$$/Corvane/vantrokelui/view/VantroShare/SigninPromptView/"
                          "SignintoVantroPolicyLink=Privacy Policy"));
    privacyLink->UI_Show(policyVisible);
    ChildPushBack(privacyLink);

    verticalBarText->SetText(detail::Localized(
        "$$$/Corvane/vantrokelui/view/VantroShare/SigninPromptView/SignintoVantroVerticalBar=|"));
    verticalBarText->UI_Show(policyVisible);
    ChildPushBack(verticalBarText);

    bindings.push_back(signinViewModel->AddPolicyVisibleBinding(
        kelui::ui::WeakNodeFunction(this, &SigninView::OnPolicyVisibleChanged)));

    signinButton->SetFontStyleName("Bold");
    signinButton->SetText(
        detail::Localized("$$$/Corvane/vantrokelui/view/VantroShare/ReviewInVantroView/"
                          "SignintoVantro=Sign in to Vantro"));
    signinButton->SetDisabled(false);
    signinButton->NotifyWhenChanged(
        kelui::ui::WeakNodeFunction(this, &SigninView::OnSigninClicked));
    signinButton->UI_Show(true);
    ChildPushBack(signinButton);

    altDescriptionText->SetText(
        detail::Localized("$$$/Corvane/vantrokelui/view/VantroShare/SigninPromptView/"
                          "SignintoVantroAltSignintoVantroDescription=Already have a Vantro "
                          "account?"));
    altDescriptionText->UI_Show(altSigninVisible);
    ChildPushBack(altDescriptionText);

    altSigninButton->SetDisabled(false);
    altSigninButton->SetText(detail::Localized(
        "$$$/Corvane/vantrokelui/view/VantroShare/ReviewInVantroView/AltSignintoVantro=Sign in"));
    altSigninButton->NotifyWhenChanged(
        kelui::ui::WeakNodeFunction(this, &SigninView::OnSigninClicked));
    altSigninButton->UI_Show(altSigninVisible);
    ChildPushBack(altSigninButton);

    bindings.push_back(signinViewModel->AddAltSigninVisibleBinding(
        kelui::ui::WeakNodeFunction(this, &SigninView::OnAltSigninVisibleChanged)));

    bindings.push_back(signinViewModel->AddIsLoggedInBinding(
        kelui::ui::WeakNodeFunction(this, &SigninView::OnIsLoggedInChanged)));

    UI_Show(true);
}

SigninView::~SigninView() = default;

void SigninView::OnSigninClicked() {
    signinViewModel->Login();
}

void SigninView::OnIsLoggedInChanged(bool loggedIn) {
    if (loggedIn) {
        signinViewModel->SetCurrentViewID(ShareForReviewViewID::ReviewInVantro);
    }
}

void SigninView::OnPolicyVisibleChanged(bool visible) {
    const bool changed = termsText->UI_IsShown() != visible;
    termsText->UI_Show(visible);
    termsLink->UI_Show(visible);
    privacyLink->UI_Show(visible);
    verticalBarText->UI_Show(visible);
    if (changed) {
        RelayoutForNewHeight();
    }
}

void SigninView::OnAltSigninVisibleChanged(bool visible) {
    const bool changed = altSigninButton->UI_IsShown() != visible;
    altDescriptionText->UI_Show(visible);
    altSigninButton->UI_Show(visible);
    if (changed) {
        RelayoutForNewHeight();
    }
}

void SigninView::RelayoutForNewHeight() {
    ApplyLayout();
    // The section holding this screen sizes itself again when the flag moves.
    viewModel->SetInvalidateParentForChild(!viewModel->GetInvalidateParentForChild());
}

SigninView::PanelLayout SigninView::ComputePanelLayout() const {
    PanelLayout layout;
    const PointT<float> label = sharedui::GetRecommendedSize(workflowLabel);
    layout.workflowLabel = {detail::kColumnLeft, detail::kLabelTop, label.x, label.y};
    float y = detail::kLabelTop + label.y + kGapBelowLabel;

    const float description =
        sharedui::MeasureTextHeight(longDescriptionText, detail::kColumnWidth);
    layout.longDescriptionText = {detail::kColumnLeft, y, detail::kColumnWidth, description};
    y += description;

    if (signinViewModel->GetPolicyVisible()) {
        y += kGapAboveTerms;
        const float terms = sharedui::MeasureTextHeight(termsText, detail::kColumnWidth);
        layout.termsText = RectT<float>{detail::kColumnLeft, y, detail::kColumnWidth, terms};
        const float row = y + terms + kGapAboveLinks;
        const float termsWidth = sharedui::GetRecommendedSize(termsLink).x;
        layout.termsLink = RectT<float>{kLinkLeft, row, termsWidth, kLinkHeight};
        const float barWidth = sharedui::GetRecommendedSize(verticalBarText).x;
        layout.verticalBarText =
            RectT<float>{detail::kColumnLeft + termsWidth, row, barWidth, kLinkHeight};
        layout.privacyLink = RectT<float>{detail::kColumnLeft + termsWidth + barWidth, row,
                                          sharedui::GetRecommendedSize(privacyLink).x, kLinkHeight};
        y = row + kLinkRowAdvance;
    }

    y += kGapAboveButton;
    const PointT<float> signin = sharedui::GetRecommendedSize(signinButton);
    layout.signinButton = {detail::kColumnRight - signin.x, y, signin.x, signin.y};
    y += signin.y;

    if (signinViewModel->GetAltSigninVisible()) {
        y += kGapAboveAltSignin;
        const PointT<float> alt = sharedui::GetRecommendedSize(altSigninButton);
        layout.altDescriptionText =
            RectT<float>{detail::kColumnLeft, y, detail::kColumnWidth - alt.x, alt.y};
        layout.altSigninButton = RectT<float>{detail::kColumnRight - alt.x, y, alt.x, alt.y};
        y += alt.y;
    }

    layout.recommendedSize = {detail::kViewWidth, y + detail::kBottomMargin};
    return layout;
}

PointT<float> SigninView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return ComputePanelLayout().recommendedSize;
}

void SigninView::UI_SetLocalRectF(const RectT<float>& rect) {
    PopupBaseView::UI_SetLocalRectF(rect);
    ApplyLayout();
}

void SigninView::ApplyLayout() {
    if (!UI_GetDrawSupplier()) {
        return;
    }
    const PanelLayout layout = ComputePanelLayout();
    workflowLabel->UI_SetLocalRectF(layout.workflowLabel);
    longDescriptionText->UI_SetLocalRectF(layout.longDescriptionText);
    if (layout.termsText) {
        termsText->UI_SetLocalRectF(*layout.termsText);
        termsLink->UI_SetLocalRectF(*layout.termsLink);
        verticalBarText->UI_SetLocalRectF(*layout.verticalBarText);
        privacyLink->UI_SetLocalRectF(*layout.privacyLink);
    }
    signinButton->UI_SetLocalRectF(layout.signinButton);
    if (layout.altSigninButton) {
        altDescriptionText->UI_SetLocalRectF(*layout.altDescriptionText);
        altSigninButton->UI_SetLocalRectF(*layout.altSigninButton);
    }
}

}  // namespace vantrokelui::view
