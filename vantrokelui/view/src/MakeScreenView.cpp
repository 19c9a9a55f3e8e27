#include <vantrokelui/view/MakeScreenView.h>

#include <vantrokelui/view/ReviewInVantroView.h>

namespace vantrokelui::view {

boost::intrusive_ptr<kelui::ui::UI_SubView> MakeScreenView(
    ShareForReviewViewID id, const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel) {
    using View = boost::intrusive_ptr<kelui::ui::UI_SubView>;
    switch (id) {
    case ShareForReviewViewID::ReviewInVantro:
        return View(new ReviewInVantroView(viewModel));
    case ShareForReviewViewID::DebugView:
    case ShareForReviewViewID::SelectProject:
    case ShareForReviewViewID::SelectFolder:
    case ShareForReviewViewID::NoAssetProcessor:
    case ShareForReviewViewID::NoAsset:
    case ShareForReviewViewID::Offline:
    case ShareForReviewViewID::StorageLimitExceeded:
    case ShareForReviewViewID::SigninPrompt:
    case ShareForReviewViewID::CopyLinkSection:
    case ShareForReviewViewID::EncodingQueued:
    case ShareForReviewViewID::EncodingProgress:
    case ShareForReviewViewID::UploadProgress:
        // The screens' own views replace these empty ones as they are built.
        return View(new kelui::ui::UI_SubView);
    case ShareForReviewViewID::None:
        break;
    }
    return nullptr;
}

}  // namespace vantrokelui::view
