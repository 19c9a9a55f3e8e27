#include <vantrokelui/view/MakeScreenView.h>

namespace vantrokelui::view {

boost::intrusive_ptr<kelui::ui::UI_SubView> MakeScreenView(
    ShareForReviewViewID id, const std::shared_ptr<viewmodel::ShareForReviewViewModel>& /*viewModel*/) {
    switch (id) {
    case ShareForReviewViewID::DebugView:
    case ShareForReviewViewID::SelectProject:
    case ShareForReviewViewID::SelectFolder:
    case ShareForReviewViewID::ReviewInVantro:
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
        return boost::intrusive_ptr<kelui::ui::UI_SubView>(new kelui::ui::UI_SubView);
    case ShareForReviewViewID::None:
        break;
    }
    return nullptr;
}

}  // namespace vantrokelui::view
