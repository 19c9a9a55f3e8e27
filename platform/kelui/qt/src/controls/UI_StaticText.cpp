#include <kelui/controls/UI_StaticText.h>

#include <cmath>

#include <QFontMetricsF>

#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>

#include "controls/StaticTextWidget.h"
#include "limner/PainterLimner.h"
#include "limner/QtFont.h"

namespace kelui::controls {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {

std::shared_ptr<limner::WidgetDrawingSupplier> SupplierOf(const ui::UI_Node& node) {
    return node.UI_GetDrawSupplierOrDefault();
}

}  // namespace

UI_StaticText::UI_StaticText() : UI_TextControlBase(new detail::StaticTextWidget) {
    detail::StaticTextWidget::InstallAccessibility();
    // The widget is deleted by the node's base, after ~UI_StaticText has cleared this function,
    // so `this` never dangles inside it.
    static_cast<detail::StaticTextWidget*>(GetWidget())->SetPaintFunction([this](QWidget& widget) {
        PaintWidget(widget);
    });
}

UI_StaticText::~UI_StaticText() {
    if (auto* widget = qobject_cast<detail::StaticTextWidget*>(GetWidget())) {
        widget->SetPaintFunction({});
    }
}

void UI_StaticText::SetValue(kelcore::string::string_view text) {
    SetText(text);
}

void UI_StaticText::SetMultiLine(bool value) {
    if (multiLine == value) {
        return;
    }
    multiLine = value;
    UI_Invalidate();
}

PointT<float> UI_StaticText::MeasureWith(const limner::Font& font) const {
    const PointT<float> line = font.MeasureText(GetText());
    const PointT<float> oneLine{std::ceil(line.x), std::ceil(line.y)};
    if (!multiLine) {
        return oneLine;
    }
    const float width = UI_GetLocalRectF().width > 0.0f ? UI_GetLocalRectF().width : oneLine.x;
    return {width, std::ceil(font.GetWrappedTextHeight(GetText(), width, -1))};
}

float UI_StaticText::GetTextHeight() const {
    return MeasureWith(*SupplierOf(*this)->GetFont(GetFontDescription())).y;
}

kelcore::string::string UI_StaticText::GetDisplayedText() const {
    if (multiLine) {
        return GetText();
    }
    // The very shortening that PainterLimner::DrawText applies to the node's rectangle.
    const QFontMetricsF metrics(limner::QtFont::MakeQFont(GetFontDescription()));
    return ui::FromQString(limner::TruncateText(ui::ToQString(GetText()), metrics,
                                                UI_GetLocalRectF().width, GetTextTruncation()));
}

PointT<float> UI_StaticText::UI_GetRecommendedSize(limner::Limner& measuring) {
    return MeasureWith(*measuring.GetFont(GetFontDescription()));
}

void UI_StaticText::UI_Draw(limner::Limner& limner) {
    if (GetText().empty()) {
        return;
    }
    const skins::Theme theme = SupplierOf(*this)->GetTheme();
    const limner::ColorRGBA color =
        UI_IsEnabled() ? GetTextColor().value_or(theme.text) : theme.disabledText;
    const RectT<float> rect = UI_GetLocalRectF();
    const RectT<float> bounds{0.0f, 0.0f, rect.width, rect.height};
    if (multiLine) {
        limner.DrawWrappedText(GetText(), bounds, GetFontDescription(), color, GetTextAlignment());
    } else {
        limner.DrawText(GetText(), bounds, GetFontDescription(), color, GetTextAlignment(),
                        GetTextTruncation());
    }
}

}  // namespace kelui::controls
