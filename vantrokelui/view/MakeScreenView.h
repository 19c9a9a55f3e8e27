// Which view shows which screen of the panel. A new view is made at every change of screen and
// reads the view model's present state when it is made. Main thread.
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelui/ui/UI_SubView.h>
#include <vantrokelui/viewmodel/ShareForReviewViewID.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

namespace vantrokelui::view {

/// A new view for the screen `id`; null for an id outside 1 to 13, which the section shows as an
/// empty view.
boost::intrusive_ptr<kelui::ui::UI_SubView> MakeScreenView(
    ShareForReviewViewID id, const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel);

}  // namespace vantrokelui::view
