#include <vantrokelui/view/NoAssetView.h>

#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/view/MenuItems.h>

#include "StatusViewSupport.h"

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

NoAssetView::NoAssetView(std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : PopupBaseView(std::move(model)),
      // No icon: the label sets the fixed name in italics, as a message rather than a sequence.
      workflowLabel(new WorkflowLabel(nullptr, GetPreShowMenuFunction(), GetPostShowMenuFunction(),
                                      {MakeSignOutItem(viewModel)})),
      descriptionText(new kelui::controls::UI_StaticText) {
    workflowLabel->SetName(detail::Localized(
        "$$$/Corvane/vantrokelui/view/VantroShare/NoAssetView/WorkflowLabel=No source detected"));
    descriptionText->SetText(detail::Localized(
        "$$$/Corvane/vantrokelui/view/VantroShare/NoAssetView/DescriptionText=Select a sequence "
        "to share."));

    ChildPushBack(workflowLabel);
    ChildPushBack(descriptionText);
    workflowLabel->UI_Show(true);
    descriptionText->UI_Show(true);
    UI_Show(true);
}

NoAssetView::~NoAssetView() = default;

void NoAssetView::UI_SetLocalRectF(const RectT<float>& rect) {
    PopupBaseView::UI_SetLocalRectF(rect);
    if (!UI_GetDrawSupplier()) {
        return;
    }
    const PointT<float> label = sharedui::GetRecommendedSize(workflowLabel);
    workflowLabel->UI_SetLocalRectF({detail::kColumnLeft, detail::kLabelTop, label.x, label.y});
    descriptionText->UI_SetLocalRectF(
        {detail::kColumnLeft, rect.height - 30.0f, detail::kColumnWidth, 15.0f});
}

PointT<float> NoAssetView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {detail::kViewWidth, 70.0f};
}

}  // namespace vantrokelui::view
