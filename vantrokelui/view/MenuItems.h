// The entries that screens put in their header menu. Each action holds the view model weakly, so
// a menu that outlives its panel does nothing. Main thread.
//
//   WorkflowLabel label(icon, preShow, postShow, {MakeSignOutItem(viewModel)});
#pragma once

#include <memory>

#include <vantrokelui/view/MenuItem.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

namespace vantrokelui::view {

/// "Create new link": starts a new review link on the next share.
MenuItem MakeCreateNewLinkItem(
    const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel);
/// "Sign out of Vantro": enabled only while online and signed in, as they are when the item is
/// made.
MenuItem MakeSignOutItem(const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel);

}  // namespace vantrokelui::view
