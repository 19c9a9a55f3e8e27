#include <vantrokelui/view/NoAssetProcessorView.h>

#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/view/MenuItems.h>

#include "StatusViewSupport.h"

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

NoAssetProcessorView::NoAssetProcessorView(
    std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : PopupBaseView(std::move(model)),
      // No icon: the label sets the fixed name in italics, as a message rather than a sequence.
      workflowLabel(new WorkflowLabel(nullptr, GetPreShowMenuFunction(), GetPostShowMenuFunction(),
                                      {MakeSignOutItem(viewModel)})),
      descriptionText(new kelui::controls::UI_StaticText) {
    workflowLabel->SetName(detail::Localized(
        "$$$/Corvane/vantrokelui/view/VantroShare/NoAssetProcessorView/WorkflowLabel=Sarvex not "
        "installed"));
    descriptionText->SetText(detail::Localized(
        "$$$/Corvane/vantrokelui/view/VantroShare/NoAssetProcessorView/DescriptionText=Please "
        "install the latest version of Tessaly Sarvex to create a link."));
    descriptionText->SetMultiLine(true);

    ChildPushBack(workflowLabel);
    ChildPushBack(descriptionText);
    workflowLabel->UI_Show(true);
    descriptionText->UI_Show(true);
    UI_Show(true);
}

NoAssetProcessorView::~NoAssetProcessorView() = default;

void NoAssetProcessorView::UI_SetLocalRectF(const RectT<float>& rect) {
    PopupBaseView::UI_SetLocalRectF(rect);
    if (!UI_GetDrawSupplier()) {
        return;
    }
    const PointT<float> label = sharedui::GetRecommendedSize(workflowLabel);
    workflowLabel->UI_SetLocalRectF({detail::kColumnLeft, detail::kLabelTop, label.x, label.y});
    descriptionText->UI_SetLocalRectF(
        {detail::kColumnLeft, rect.height - 45.0f, detail::kColumnWidth, 30.0f});
}

PointT<float> NoAssetProcessorView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {detail::kViewWidth, 85.0f};
}

}  // namespace vantrokelui::view
