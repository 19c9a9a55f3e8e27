// The screen of a share that is running (views 11, 12 and 13: queued in the encoder, encoding,
// uploading): the header row, the review link with its Copy button, then the stage, the upload
// speed and the time left on one line, the progress bar and a Cancel button. Each stage is a new
// instance, so the stage's text is fixed when the screen is made; bar, speed and time follow the
// view model through bindings that end with the screen. Made by the screen manager and owned by
// the section that shows it. Main thread.
//
//   viewModel->SetCurrentViewID(ShareForReviewViewID::EncodingProgress);
//   boost::intrusive_ptr<EncodingProgressView> view(new EncodingProgressView(viewModel));
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_ProgressBar.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/controls/UI_TextButton.h>
#include <vantrokelui/model/EncodingStatus.h>
#include <vantrokelui/view/CopyLinkSection.h>
#include <vantrokelui/view/PopupBaseView.h>
#include <vantrokelui/view/WorkflowLabel.h>

namespace vantrokelui::view {

class EncodingProgressView final : public PopupBaseView {
public:
    /// The remaining time is cut to this many seconds (99 hours, 59 minutes, 59 seconds).
    static constexpr double kMaxRemainingSeconds = 359999.0;
    /// The bar counts in thousandths.
    static constexpr int kProgressSteps = 1000;

    /// Builds the children, names the stage by the view model's CurrentViewID of this moment
    /// (no text for an id that is not a progress stage), binds to the view model and shows
    /// itself.
    explicit EncodingProgressView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~EncodingProgressView() override;

    /// Places the children: header, link row, the stage at the left of its line with speed and
    /// time at the right, the bar below, Cancel at the bottom right. Does nothing to them until
    /// the view has a drawing supplier.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    /// Always (340, 149).
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<WorkflowLabel>& GetWorkflowLabel() const { return workflowLabel; }
    const boost::intrusive_ptr<CopyLinkSection>& GetCopyLinkSection() const {
        return copyLinkSection;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetStatusText() const {
        return statusText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetSpeedText() const {
        return speedText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetTimeLeftText() const {
        return timeLeftText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_ProgressBar>& GetProgressBar() const {
        return progressBar;
    }
    const boost::intrusive_ptr<kelui::controls::UI_TextButton>& GetCancelButton() const {
        return cancelButton;
    }

private:
    /// `progress` from 0 to 1; zero shows the bar's busy look, since nothing is known yet.
    void OnProgressChanged(double progress);
    /// Hours, minutes and seconds left, leaving out leading zero units; nothing below one second.
    void OnRemainingTimeChanged(double seconds);
    /// Megabits per second, rounded; nothing at zero.
    void OnSpeedChanged(double speed);
    /// Cancels the active job and closes the panel.
    void OnCancelClicked();
    /// Moves the open panel to the stage's screen (queued 11, encoding 12, encoded or uploading
    /// 13), so the progress screen follows the share while it stays open; a new screen reads the
    /// stage's text. Other statuses are the pipeline's to answer.
    void OnEncodingStatusChanged(EncodingStatus status);
    /// Lays the children out again at the present size.
    void ApplyLayout();

    boost::intrusive_ptr<WorkflowLabel> workflowLabel;
    boost::intrusive_ptr<CopyLinkSection> copyLinkSection;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> statusText;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> speedText;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> timeLeftText;
    boost::intrusive_ptr<kelui::controls::UI_ProgressBar> progressBar;
    boost::intrusive_ptr<kelui::controls::UI_TextButton> cancelButton;
};

}  // namespace vantrokelui::view
