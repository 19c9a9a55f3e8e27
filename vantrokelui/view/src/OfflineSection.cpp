#include <vantrokelui/view/OfflineSection.h>

#include <kelcore/config/Localizer.h>
#include <vantrokelui/sharedui/ResourceManager.h>

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

OfflineSection::OfflineSection()
    : image(new kelui::controls::UI_StaticImage), text(new kelui::controls::UI_StaticText) {
    image->SetImageSupplyFunction(sharedui::BindImageSupplyFunction(
        "S_CloudStateDisconnectedHalyard_16", &sharedui::GetResourceManager));
    text->SetText(kelcore::config::Localizer::Get().GetString(
        "$$$/Corvane/vantrokelui/view/VantroShare/OfflineView/DescriptionText=Connect to the "
        "internet to share for review."));
    image->UI_Show(true);
    text->UI_Show(true);
    ChildPushBack(image);
    ChildPushBack(text);
    UI_Show(true);
}

OfflineSection::~OfflineSection() = default;

void OfflineSection::UI_SetLocalRectF(const RectT<float>& rect) {
    UI_SubView::UI_SetLocalRectF(rect);
    if (!UI_GetDrawSupplier()) {
        return;
    }
    image->UI_SetLocalRectF({0.0f, 0.5f, 16.0f, 16.0f});
    text->UI_SetLocalRectF({21.0f, 0.5f, 289.0f, 15.0f});
}

PointT<float> OfflineSection::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {340.0f, 16.0f};
}

}  // namespace vantrokelui::view
