#include <vantrokelui/sharedui/Measuring.h>

#include <cmath>

#include <kelui/ui/UI_NodeManager.h>

namespace vantrokelui::sharedui {

namespace {

std::shared_ptr<limner::WidgetDrawingSupplier> SupplierOf(const kelui::ui::UI_Node& node) {
    return node.UI_GetDrawSupplierOrDefault();
}

}  // namespace

kelcore::geom::PointT<float> GetRecommendedSize(
    const boost::intrusive_ptr<kelui::ui::UI_Node>& node) {
    if (!node) {
        return {};
    }
    const auto measuring = SupplierOf(*node)->GetMeasuringLimner();
    const auto size = node->UI_GetRecommendedSize(*measuring);
    return {std::ceil(size.x), std::ceil(size.y)};
}

float MeasureTextHeight(const boost::intrusive_ptr<kelui::controls::UI_StaticText>& text,
                        float width) {
    if (!text) {
        return 0.0f;
    }
    const auto supplier = SupplierOf(*text);
    limner::FontDescription face = text->GetFontDescription();
    face.family = limner::ValidateFontName(face.family);
    const auto font = supplier->GetFont(face);
    return std::ceil(font->GetWrappedTextHeight(text->GetText(), width, -1));
}

}  // namespace vantrokelui::sharedui
