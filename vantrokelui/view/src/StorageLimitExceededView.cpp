#include <vantrokelui/view/StorageLimitExceededView.h>

#include <kelui/ui/WeakNodeFunction.h>

#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/view/MenuItems.h>

#include "StatusViewSupport.h"

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

StorageLimitExceededView::StorageLimitExceededView(
    std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : PopupBaseView(std::move(model)),
      workflowLabel(new WorkflowLabel(viewModel->GetAssetTypeIcon(), GetPreShowMenuFunction(),
                                      GetPostShowMenuFunction(), {MakeSignOutItem(viewModel)})),
      descriptionText(new kelui::controls::UI_StaticText) {
    bindings.push_back(viewModel->AddActiveAssetNameBinding(
        kelui::ui::WeakNodeFunction(workflowLabel.get(), &WorkflowLabel::SetName)));
    descriptionText->SetText(detail::Localized(
        "$$$/Corvane/vantrokelui/view/VantroShare/StorageLimitExceededView/DescriptionText=You've "
        "reached your storage limit. Upgrade your Vantro account for more storage."));
    descriptionText->SetMultiLine(true);

    ChildPushBack(workflowLabel);
    ChildPushBack(descriptionText);
    workflowLabel->UI_Show(true);
    descriptionText->UI_Show(true);
    UI_Show(true);
}

StorageLimitExceededView::~StorageLimitExceededView() = default;

void StorageLimitExceededView::UI_SetLocalRectF(const RectT<float>& rect) {
    PopupBaseView::UI_SetLocalRectF(rect);
    if (!UI_GetDrawSupplier()) {
        return;
    }
    const PointT<float> label = sharedui::GetRecommendedSize(workflowLabel);
    workflowLabel->UI_SetLocalRectF({detail::kColumnLeft, detail::kLabelTop, label.x, label.y});
    const float height = sharedui::MeasureTextHeight(descriptionText, detail::kColumnWidth);
    descriptionText->UI_SetLocalRectF({detail::kColumnLeft,
                                       rect.height - height - detail::kBottomMargin,
                                       detail::kColumnWidth, height});
}

PointT<float> StorageLimitExceededView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {detail::kViewWidth, 85.0f};
}

}  // namespace vantrokelui::view
