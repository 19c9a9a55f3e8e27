#include <vantrokelui/view/MessageScreenView.h>

#include <utility>

#include <vantrokelui/sharedui/Measuring.h>

#include "StatusViewSupport.h"

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {

constexpr float kLineHeight = 15.0f;

}  // namespace

MessageScreenView::MessageScreenView(std::shared_ptr<viewmodel::ShareForReviewViewModel> model,
                                     const kelui::ui::ImageSupplyFunction& icon,
                                     const std::vector<MenuItem>& menu,
                                     const Description& description, float screenHeight)
    : PopupBaseView(std::move(model)),
      workflowLabel(
          new WorkflowLabel(icon, GetPreShowMenuFunction(), GetPostShowMenuFunction(), menu)),
      descriptionText(new kelui::controls::UI_StaticText),
      descriptionLines(description.lines),
      height(screenHeight) {
    descriptionText->SetText(description.text);
    descriptionText->SetMultiLine(descriptionLines != 1);

    ChildPushBack(workflowLabel);
    ChildPushBack(descriptionText);
    workflowLabel->UI_Show(true);
    descriptionText->UI_Show(true);
    UI_Show(true);
}

MessageScreenView::~MessageScreenView() = default;

void MessageScreenView::UI_SetLocalRectF(const RectT<float>& rect) {
    PopupBaseView::UI_SetLocalRectF(rect);
    if (!UI_GetDrawSupplier()) {
        return;
    }
    detail::PlaceWorkflowLabel(workflowLabel);
    const float textHeight =
        descriptionLines > 0 ? kLineHeight * static_cast<float>(descriptionLines)
                             : sharedui::MeasureTextHeight(descriptionText, detail::kColumnWidth);
    descriptionText->UI_SetLocalRectF({detail::kColumnLeft,
                                       rect.height - textHeight - detail::kBottomMargin,
                                       detail::kColumnWidth, textHeight});
}

PointT<float> MessageScreenView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {detail::kViewWidth, height};
}

}  // namespace vantrokelui::view
