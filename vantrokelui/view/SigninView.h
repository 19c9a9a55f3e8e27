// The sign-in screen (view 9): the header row with the sequence's icon and name, what signing in
// is for, optionally the terms and privacy links, the "Sign in to Vantro" button and, optionally,
// a second sign-in for those who already have an account. Two configuration switches, read by
// the screen's own view model when the screen is made, decide the optional parts. Made by the
// screen manager for one screen and owned by the section that shows it; the screen owns its
// SigninViewModel, so the sign-in's view model lives and dies with it. When the sign-in ends
// with a user signed in, the screen moves the panel on to the share screen. Main thread.
//
//   boost::intrusive_ptr<SigninView> view(new SigninView(viewModel));
//   section->SetContent(view);   // a click on "Sign in to Vantro" starts the sign-in
#pragma once

#include <memory>
#include <optional>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_HotTextURL.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/controls/UI_TextButton.h>
#include <vantrokelui/view/PopupBaseView.h>
#include <vantrokelui/view/WorkflowLabel.h>
#include <vantrokelui/viewmodel/SigninViewModel.h>

namespace vantrokelui::view {

class SigninView final : public PopupBaseView {
public:
    /// Where the children go, in view coordinates, and the size the view asks for. The parts
    /// that their switch hides get no rectangle: they keep the one they had.
    struct PanelLayout {
        kelcore::geom::RectT<float> workflowLabel;
        kelcore::geom::RectT<float> longDescriptionText;
        std::optional<kelcore::geom::RectT<float>> termsText;
        std::optional<kelcore::geom::RectT<float>> termsLink;
        std::optional<kelcore::geom::RectT<float>> verticalBarText;
        std::optional<kelcore::geom::RectT<float>> privacyLink;
        kelcore::geom::RectT<float> signinButton;
        std::optional<kelcore::geom::RectT<float>> altDescriptionText;
        std::optional<kelcore::geom::RectT<float>> altSigninButton;
        kelcore::geom::PointT<float> recommendedSize;
    };

    /// Makes the screen's SigninViewModel from `viewModel`, builds and binds the children and
    /// shows itself. The links point at the service's terms and privacy pages as configured now.
    explicit SigninView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~SigninView() override;

    /// Keeps `rect`, then places the children as ComputePanelLayout says; does nothing to them
    /// until the view has a drawing supplier.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    /// 340 wide; as high as the laid-out children plus the bottom margin.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

    /// Where the children go, measured now, with the switches as the SigninViewModel has them.
    PanelLayout ComputePanelLayout() const;

    /// The screen's own view model.
    const std::shared_ptr<viewmodel::SigninViewModel>& GetSigninViewModel() const {
        return signinViewModel;
    }

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<WorkflowLabel>& GetWorkflowLabel() const { return workflowLabel; }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetLongDescriptionText() const {
        return longDescriptionText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetTermsText() const {
        return termsText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_TextButton>& GetSigninButton() const {
        return signinButton;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetAltDescriptionText() const {
        return altDescriptionText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_TextButton>& GetAltSigninButton() const {
        return altSigninButton;
    }
    const boost::intrusive_ptr<kelui::controls::UI_HotTextURL>& GetTermsLink() const {
        return termsLink;
    }
    const boost::intrusive_ptr<kelui::controls::UI_HotTextURL>& GetPrivacyLink() const {
        return privacyLink;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetVerticalBarText() const {
        return verticalBarText;
    }

    /// The pages the two links open: the service's web pages plus these paths.
    static constexpr const char* kTermsPath = "/legal/terms";
    static constexpr const char* kPrivacyPath = "/legal/privacy";

private:
    void OnSigninClicked();
    void OnIsLoggedInChanged(bool loggedIn);
    /// A switch changed while the screen shows: the parts it governs appear or go, and the panel
    /// is told that this screen's height changed.
    void OnPolicyVisibleChanged(bool visible);
    void OnAltSigninVisibleChanged(bool visible);
    void ApplyLayout();
    void RelayoutForNewHeight();

    std::shared_ptr<viewmodel::SigninViewModel> signinViewModel;
    boost::intrusive_ptr<WorkflowLabel> workflowLabel;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> longDescriptionText;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> termsText;
    boost::intrusive_ptr<kelui::controls::UI_TextButton> signinButton;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> altDescriptionText;
    boost::intrusive_ptr<kelui::controls::UI_TextButton> altSigninButton;
    boost::intrusive_ptr<kelui::controls::UI_HotTextURL> termsLink;
    boost::intrusive_ptr<kelui::controls::UI_HotTextURL> privacyLink;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> verticalBarText;
};

}  // namespace vantrokelui::view
