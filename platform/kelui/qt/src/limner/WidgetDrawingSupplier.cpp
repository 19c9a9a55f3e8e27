#include <kelui/limner/WidgetDrawingSupplier.h>

#include "limner/PainterLimner.h"
#include "limner/QtFont.h"

namespace limner {

WidgetDrawingSupplier::WidgetDrawingSupplier() = default;

WidgetDrawingSupplier::WidgetDrawingSupplier(kelui::skins::Theme theme)
    : followsApplication(false), theme(std::move(theme)) {}

WidgetDrawingSupplier::~WidgetDrawingSupplier() = default;

std::unique_ptr<Limner> WidgetDrawingSupplier::GetMeasuringLimner() const {
    return std::make_unique<MeasuringLimner>();
}

std::shared_ptr<Font> WidgetDrawingSupplier::GetFont(const FontDescription& description) const {
    return std::make_shared<QtFont>(description);
}

kelui::skins::Theme WidgetDrawingSupplier::GetTheme() const {
    return followsApplication ? kelui::skins::GetApplicationTheme() : theme;
}

}  // namespace limner
