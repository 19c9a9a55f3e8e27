#include <kelui/controls/OS_ViewContainer.h>

#include <QWidget>

#include <kelui/skins/Theme.h>
#include <kelui/ui/UI_NodeManager.h>

namespace kelui::controls {

std::array<float, 4> OS_ViewContainer::GetScaleFactors() const {
    const QWidget* widget = GetWidget();
    const auto ratio = widget ? static_cast<float>(widget->devicePixelRatioF()) : 1.0f;
    return {ratio, ratio, 1.0f, 1.0f};
}

void OS_ViewContainer::UI_Draw(limner::Limner& limner) {
    const auto supplier = UI_GetDrawSupplierOrDefault();
    const auto rect = UI_GetLocalRectF();
    limner.FillRect({0.0f, 0.0f, rect.width, rect.height},
                    skins::GetPaletteGrayColor(supplier->GetTheme(), 1));
}

}  // namespace kelui::controls
