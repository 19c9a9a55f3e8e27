#include <vantrokelui/view/CopyLinkSectionView.h>

#include <utility>

#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/view/MenuItems.h>

#include <kelui/ui/WeakNodeFunction.h>

#include "ScreenLayout.h"

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {

using detail::kColumnLeft;
using detail::kViewWidth;

// From the label's top to the row below it: the label's top margin and the gap under it.
constexpr float kGapBelowLabel = 20.0f;
constexpr float kOfflineGap = 10.0f;
// Label, gaps, link row and bottom margin of the screen with nothing else to show.
constexpr float kCleanHeight = 75.0f;
// What the update strip adds to the height of its note in the screen's height.
constexpr float kUpdateStripExtra = 38.0f;
// The strip's button ends 40 below the note; the strip reaches that far so that it does not cut
// the button (a Qt widget clips its children), which leaves 13 pixels under the button.
constexpr float kUpdateStripButtonBottom = 40.0f;

}  // namespace

CopyLinkSectionView::CopyLinkSectionView(std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : PopupBaseView(std::move(model)),
      workflowLabel(new WorkflowLabel(
          viewModel->GetAssetTypeIcon(), GetPreShowMenuFunction(), GetPostShowMenuFunction(),
          {MakeSignOutItem(viewModel), MakeCreateNewLinkItem(viewModel)})),
      offlineSection(new OfflineSection),
      copyLinkSection(new CopyLinkSection(viewModel)),
      updateContentView(new UpdateContentView(viewModel)) {
    workflowLabel->UI_Show(true);
    copyLinkSection->UI_Show(true);
    ChildPushBack(workflowLabel);
    ChildPushBack(copyLinkSection);
    ChildPushBack(offlineSection);
    ChildPushBack(updateContentView);

    isOffline = !viewModel->GetIsNetworkConnected();
    isDirty = viewModel->GetActiveAssetDirty();
    offlineSection->UI_Show(isOffline);
    updateContentView->UI_SetDisabled(isOffline);
    updateContentView->UI_Show(isDirty);

    bindings.push_back(viewModel->AddActiveAssetDirtyBinding(
        kelui::ui::WeakNodeFunction(this, &CopyLinkSectionView::OnDirtyChanged)));
    bindings.push_back(viewModel->AddActiveAssetNameBinding(
        kelui::ui::WeakNodeFunction(workflowLabel.get(), &WorkflowLabel::SetName)));
    bindings.push_back(viewModel->AddIsNetworkConnectedBinding(
        kelui::ui::WeakNodeFunction(this, &CopyLinkSectionView::OnNetworkChanged)));

    UI_Show(true);
}

CopyLinkSectionView::~CopyLinkSectionView() = default;

void CopyLinkSectionView::OnDirtyChanged(bool dirty) {
    if (isDirty == dirty) {
        return;
    }
    isDirty = dirty;
    Relayout();
}

void CopyLinkSectionView::OnNetworkChanged(bool connected) {
    if (isOffline == !connected) {
        return;
    }
    isOffline = !connected;
    Relayout();
}

void CopyLinkSectionView::Relayout() {
    offlineSection->UI_Show(isOffline);
    updateContentView->UI_SetDisabled(isOffline);
    updateContentView->UI_Show(isDirty);
    viewModel->SetInvalidateParentForChild(!viewModel->GetInvalidateParentForChild());
}

float CopyLinkSectionView::GetUpdateContentHeight() const {
    return updateContentView->GetTextHeight() + kUpdateStripExtra;
}

PointT<float> CopyLinkSectionView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    // From the heights the layout gives the strip and the notice, not from their rectangles of
    // the moment: the screen manager measures once, before the layout that shows them.
    float height = kCleanHeight;
    if (isDirty) {
        height += GetUpdateContentHeight();
    }
    if (isOffline) {
        height += kOfflineGap + sharedui::GetRecommendedSize(offlineSection).y;
    }
    return {kViewWidth, height};
}

void CopyLinkSectionView::UI_SetLocalRectF(const RectT<float>& rect) {
    PopupBaseView::UI_SetLocalRectF(rect);
    if (!UI_GetDrawSupplier()) {
        return;
    }
    const float y = detail::PlaceWorkflowLabel(workflowLabel) + kGapBelowLabel;

    const PointT<float> offline = sharedui::GetRecommendedSize(offlineSection);
    if (isOffline) {
        offlineSection->UI_SetLocalRectF({kColumnLeft, y, offline.x, offline.y});
    } else {
        offlineSection->UI_SetLocalRectF({kColumnLeft, y, 0.0f, 0.0f});
    }

    const float y2 = isOffline ? y + offline.y + kOfflineGap : y;
    const PointT<float> row = detail::PlaceInColumn(copyLinkSection, y2);

    // Across the whole width: the strip's own margin of 15 keeps its parts in the column.
    updateContentView->UI_SetLocalRectF(
        {0.0f, y2 + row.y, rect.width,
         updateContentView->GetTextHeight() + kUpdateStripButtonBottom});
}

}  // namespace vantrokelui::view
