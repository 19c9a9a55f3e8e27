// The screen on which the user starts a share: the header row with the sequence's name, what a
// share does, where the result will go (a link that opens the location picker), the encoder
// presets and the Share button. Made by the screen manager for view 4 and owned by the section
// that shows it; it reads the view model when it is made and follows it through bindings that
// end with it. Main thread.
//
//   boost::intrusive_ptr<ReviewInVantroView> view(new ReviewInVantroView(viewModel));
//   section->SetContent(view);   // the bindings then deliver name, path and presets
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelcore/string/String.h>
#include <kelui/controls/UI_HotTextButton.h>
#include <kelui/controls/UI_Popup.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/controls/UI_TextButton.h>
#include <vantrokelui/utility/NotifyingProperty.h>
#include <vantrokelui/view/PopupBaseView.h>
#include <vantrokelui/view/WorkflowLabel.h>

namespace vantrokelui {
class EncoderPresetModel;
}

namespace vantrokelui::view {

class ReviewInVantroView final : public PopupBaseView {
public:
    /// The rectangles of the children, in view coordinates and in the order of the fields, and
    /// the size the whole view asks for.
    struct PanelLayout {
        kelcore::geom::RectT<float> workflowLabel;
        kelcore::geom::RectT<float> descriptionText;
        kelcore::geom::RectT<float> locationLabel;
        kelcore::geom::RectT<float> locationButton;
        kelcore::geom::RectT<float> presetPopup;
        kelcore::geom::RectT<float> shareButton;
        kelcore::geom::PointT<float> recommendedSize;
    };

    /// Builds the children, binds them to `viewModel` and shows itself. The description is
    /// chosen now, by whether the next share makes a new link; so is where the location link
    /// leads (the folder step when a folder is chosen, else the project step).
    explicit ReviewInVantroView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~ReviewInVantroView() override;

    /// 340 wide; as high as the laid-out children plus the bottom margin.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    /// Places the children as ComputePanelLayout says.
    void UI_SizeChanged(const kelcore::geom::RectT<float>& rect) override;

    /// Where the children go, measured now with the children's present texts.
    PanelLayout ComputePanelLayout() const;

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<WorkflowLabel>& GetWorkflowLabel() const { return workflowLabel; }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetDescriptionText() const {
        return descriptionText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetLocationLabel() const {
        return locationLabel;
    }
    const boost::intrusive_ptr<kelui::controls::UI_HotTextButton>& GetLocationButton() const {
        return locationButton;
    }
    const boost::intrusive_ptr<kelui::controls::UI_Popup>& GetPresetPopup() const {
        return presetPopup;
    }
    const boost::intrusive_ptr<kelui::controls::UI_TextButton>& GetShareButton() const {
        return shareButton;
    }

    /// Width of the tooltips of the location link and the Share button.
    static constexpr float kToolTipWidth = 400.0f;

private:
    void OnLocationPathChanged(const kelcore::string::string& path);
    void OnPresetsChanged(const utility::SharedPtrVector<EncoderPresetModel>& presets);
    void OnPresetPicked();
    void OnSelectedPresetChanged(const std::shared_ptr<EncoderPresetModel>& preset);
    void OnShareClicked();
    /// The keyboard's click on the location link goes where a press of the mouse goes.
    void OnLocationActivated();
    /// Lays the children out again at the present size.
    void ApplyLayout();

    boost::intrusive_ptr<WorkflowLabel> workflowLabel;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> descriptionText;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> locationLabel;
    boost::intrusive_ptr<kelui::controls::UI_HotTextButton> locationButton;
    boost::intrusive_ptr<kelui::controls::UI_Popup> presetPopup;
    boost::intrusive_ptr<kelui::controls::UI_TextButton> shareButton;
    ShareForReviewViewID locationTarget = ShareForReviewViewID::SelectProject;
};

}  // namespace vantrokelui::view
