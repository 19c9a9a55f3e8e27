// The common base of the panel's full-size screens: holds the view model and the screen's
// bindings (which end with the screen), lets a control jump to another screen when it is
// pressed, and gives the screen's menus the functions that keep the panel's popup open while a
// menu is showing. A screen lives exactly as long as it is shown. Main thread.
//
//   SetClickNavigation(locationButton, ShareForReviewViewID::SelectProject);
//   auto label = new WorkflowLabel(icon, GetPreShowMenuFunction(), GetPostShowMenuFunction(),
//   items);
#pragma once

#include <functional>
#include <memory>

#include <kelui/controls/UI_ControlView.h>
#include <kelui/controls/UI_Popup.h>
#include <kelui/ui/MouseEvent.h>
#include <vantrokelui/utility/DataBindingTarget.h>
#include <vantrokelui/viewmodel/ShareForReviewViewID.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

namespace vantrokelui::view {

class PopupBaseView : public kelui::controls::UI_ControlView, public utility::DataBindingTarget {
public:
    explicit PopupBaseView(std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel);

    /// Every screen says its own size.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override = 0;

    /// On a press (action 1) moves the panel to `target`, reporting that the location picker
    /// opened when the target is one of its two steps; sets `handled` and returns it. Any other
    /// event leaves `handled` false.
    virtual bool OnNavigationClick(kelui::ui::UI_Node* node, const kelui::ui::MouseEvent& event,
                                   bool& handled, ShareForReviewViewID target);
    /// Makes a press on `node` go to `target`. The target is fixed now.
    virtual void SetClickNavigation(boost::intrusive_ptr<kelui::ui::UI_Node> node,
                                    ShareForReviewViewID target);

    const std::shared_ptr<viewmodel::ShareForReviewViewModel>& GetViewModel() const {
        return viewModel;
    }

protected:
    /// Marks the enclosing popup as showing a menu, so it stays open meanwhile.
    std::function<void(kelui::controls::UI_Popup&)> GetPreShowMenuFunction();
    /// Clears that mark once the menu closed.
    std::function<void(kelui::controls::UI_Popup&)> GetPostShowMenuFunction();

    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;

private:
    std::function<void(kelui::controls::UI_Popup&)> MakeMenuFlagFunction(bool showing);
};

}  // namespace vantrokelui::view
