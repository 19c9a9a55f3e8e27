#include <vantrokelui/view/OfflineView.h>

#include <kelui/ui/WeakNodeFunction.h>

#include <vantrokelui/sharedui/Measuring.h>

#include "StatusViewSupport.h"

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

OfflineView::OfflineView(std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : PopupBaseView(std::move(model)),
      // No menu: signing out needs the network.
      workflowLabel(new WorkflowLabel(viewModel->GetAssetTypeIcon(), GetPreShowMenuFunction(),
                                      GetPostShowMenuFunction(), {})),
      offlineSection(new OfflineSection) {
    bindings.push_back(viewModel->AddActiveAssetNameBinding(
        kelui::ui::WeakNodeFunction(workflowLabel.get(), &WorkflowLabel::SetName)));

    ChildPushBack(workflowLabel);
    ChildPushBack(offlineSection);
    workflowLabel->UI_Show(true);
    offlineSection->UI_Show(true);
    UI_Show(true);
}

OfflineView::~OfflineView() = default;

void OfflineView::UI_SetLocalRectF(const RectT<float>& rect) {
    PopupBaseView::UI_SetLocalRectF(rect);
    if (!UI_GetDrawSupplier()) {
        return;
    }
    detail::PlaceWorkflowLabel(workflowLabel);
    const PointT<float> section = sharedui::GetRecommendedSize(offlineSection);
    offlineSection->UI_SetLocalRectF({detail::kColumnLeft,
                                      rect.height - section.y - detail::kBottomMargin, section.x,
                                      section.y});
}

PointT<float> OfflineView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {detail::kViewWidth, 70.0f};
}

}  // namespace vantrokelui::view
