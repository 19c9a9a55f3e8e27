// The location picker's screen (views 2 and 3), in the panel and in the stand-alone dialog: a
// bold header, the project step or the folder step (whichever the view model's CurrentViewID
// names), and Cancel and Choose. Choose commits the proposed folder; both buttons first put the
// proposal back to the committed state, so an abandoned edit leaves no trace. Made by the screen
// manager for one screen and owned by the section that shows it. Main thread.
//
//   boost::intrusive_ptr<LocationPickerView> picker(new LocationPickerView(viewModel));
//   section->SetContent(picker);
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_Divider.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/controls/UI_TextButton.h>
#include <vantrokelui/sharedui/CallToActionButton.h>
#include <vantrokelui/view/FolderPickerView.h>
#include <vantrokelui/view/PopupBaseView.h>
#include <vantrokelui/view/ProjectPickerView.h>

namespace vantrokelui {
class VantroFolder;
}

namespace vantrokelui::view {

class LocationPickerView final : public PopupBaseView {
public:
    /// Builds both steps; the header is chosen now from CurrentViewID (2 or 3). Cancel starts
    /// enabled, Choose disabled until the proposal holds a folder.
    explicit LocationPickerView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);
    ~LocationPickerView() override;

    /// Always (340, 392).
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    /// Keeps `rect`, then places header, dividers, both steps and the two buttons.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;

    /// What Cancel does: puts the proposal back, then tells the view model.
    void Cancel();
    /// What Choose does: commits the proposal, puts the proposal back in step with the
    /// commitment, then tells the view model.
    void Choose();

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetHeaderText() const {
        return headerText;
    }
    const boost::intrusive_ptr<ProjectPickerView>& GetProjectPicker() const {
        return projectPicker;
    }
    const boost::intrusive_ptr<FolderPickerView>& GetFolderPicker() const { return folderPicker; }
    const boost::intrusive_ptr<kelui::controls::UI_Divider>& GetTopDivider() const {
        return topDivider;
    }
    const boost::intrusive_ptr<kelui::controls::UI_Divider>& GetBottomDivider() const {
        return bottomDivider;
    }
    const boost::intrusive_ptr<kelui::controls::UI_TextButton>& GetCancelButton() const {
        return cancelButton;
    }
    const boost::intrusive_ptr<sharedui::CallToActionButton>& GetChooseButton() const {
        return chooseButton;
    }

private:
    void OnCurrentViewIDChanged(ShareForReviewViewID id);
    void OnProposedSelectionChanged(const std::shared_ptr<VantroFolder>& folder);
    /// Makes the proposal the committed state again: ProposedSelection = Selection, then
    /// ProposedAccount = its account (last, as that setter may clear the proposal).
    void SynchroniseProposal();

    boost::intrusive_ptr<kelui::controls::UI_StaticText> headerText;
    boost::intrusive_ptr<ProjectPickerView> projectPicker;
    boost::intrusive_ptr<FolderPickerView> folderPicker;
    boost::intrusive_ptr<kelui::controls::UI_Divider> topDivider;
    boost::intrusive_ptr<kelui::controls::UI_Divider> bottomDivider;
    boost::intrusive_ptr<kelui::controls::UI_TextButton> cancelButton;
    boost::intrusive_ptr<sharedui::CallToActionButton> chooseButton;
};

}  // namespace vantrokelui::view
