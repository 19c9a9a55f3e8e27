// What the host keeps to have the panel's screens follow the view model: it shows the screen of
// the view model's CurrentViewID in a section of the workflow host and replaces it at each
// change. Kept by shared pointer for as long as the panel exists; main thread.
//
//   auto screens = vantrokelui::CreateShareForReviewScreenManager(viewModel, workflow);
#pragma once

#include <memory>

#include <kelcore/utility/EnableSharedAs.h>
#include <vantrokelui/sharedui/WorkflowBase.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

namespace vantrokelui {

namespace view {

class ShareForReviewScreenManager : public virtual kelcore::utility::EnableSharedAs {
public:
    ShareForReviewScreenManager() = default;
    ShareForReviewScreenManager(const ShareForReviewScreenManager&) = default;
    ShareForReviewScreenManager& operator=(const ShareForReviewScreenManager&) = default;
    ~ShareForReviewScreenManager() override = default;
};

}  // namespace view

/// Puts the screen of `viewModel`'s present CurrentViewID into a new section of `workflow` now,
/// follows every change, and makes a dismissed popup set the view ID to 0.
std::shared_ptr<view::ShareForReviewScreenManager> CreateShareForReviewScreenManager(
    const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel,
    const std::shared_ptr<sharedui::WorkflowBase>& workflow);

}  // namespace vantrokelui
