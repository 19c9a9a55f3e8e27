#include <kelui/controls/UI_Divider.h>

#include <cmath>

#include <kelui/skins/Theme.h>
#include <kelui/ui/UI_NodeManager.h>

namespace kelui::controls {

kelcore::geom::PointT<float> UI_Divider::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {UI_GetLocalRectF().width, 1.0f};
}

void UI_Divider::UI_Draw(limner::Limner& limner) {
    const kelcore::geom::RectT<float> rect = UI_GetLocalRectF();
    if (rect.IsEmpty()) {
        return;
    }
    const auto supplier = UI_GetDrawSupplierOrDefault();
    // Centred, then moved onto a whole pixel of the widget: a line across two pixel rows would
    // look like a blurred two-pixel band.
    const float origin = GetOriginInWidget().y;
    const float top = std::round(origin + (rect.height - 1.0f) / 2.0f) - origin;
    limner.FillRect({0.0f, top, rect.width, 1.0f},
                    skins::GetPaletteGrayColor(supplier->GetTheme(), 3));
}

}  // namespace kelui::controls
