#include <vantrokelui/view/MakeScreenView.h>

#include <vantrokelui/view/CopyLinkSectionView.h>
#include <vantrokelui/view/DebugView.h>
#include <vantrokelui/view/EncodingProgressView.h>
#include <vantrokelui/view/LocationPickerView.h>
#include <vantrokelui/view/NoAssetProcessorView.h>
#include <vantrokelui/view/NoAssetView.h>
#include <vantrokelui/view/OfflineView.h>
#include <vantrokelui/view/ReviewInVantroView.h>
#include <vantrokelui/view/SigninView.h>
#include <vantrokelui/view/StorageLimitExceededView.h>

namespace vantrokelui::view {

boost::intrusive_ptr<kelui::ui::UI_SubView> MakeScreenView(
    ShareForReviewViewID id, const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel) {
    using View = boost::intrusive_ptr<kelui::ui::UI_SubView>;
    switch (id) {
        case ShareForReviewViewID::ReviewInVantro:
            return View(new ReviewInVantroView(viewModel));
        case ShareForReviewViewID::CopyLinkSection:
            return View(new CopyLinkSectionView(viewModel));
        case ShareForReviewViewID::EncodingQueued:
        case ShareForReviewViewID::EncodingProgress:
        case ShareForReviewViewID::UploadProgress:
            return View(new EncodingProgressView(viewModel));
        case ShareForReviewViewID::DebugView:
            return View(new DebugView(viewModel));
        case ShareForReviewViewID::NoAssetProcessor:
            return View(new NoAssetProcessorView(viewModel));
        case ShareForReviewViewID::NoAsset:
            return View(new NoAssetView(viewModel));
        case ShareForReviewViewID::Offline:
            return View(new OfflineView(viewModel));
        case ShareForReviewViewID::StorageLimitExceeded:
            return View(new StorageLimitExceededView(viewModel));
        case ShareForReviewViewID::SigninPrompt:
            return View(new SigninView(viewModel));
        case ShareForReviewViewID::SelectProject:
        case ShareForReviewViewID::SelectFolder:
            return View(new LocationPickerView(viewModel));
        case ShareForReviewViewID::None:
            break;
    }
    return nullptr;
}

}  // namespace vantrokelui::view
