#include "controls/LinkText.h"

#include <algorithm>
#include <cmath>

#include <QFontMetricsF>

#include "limner/PainterLimner.h"
#include "limner/QtFont.h"

namespace kelui::controls::detail {

LinkTextLayout LayoutLinkText(const QString& text, const limner::FontDescription& font,
                              const kelcore::geom::RectT<float>& bounds,
                              limner::TextAlignment alignment, limner::TextTruncation truncation) {
    const kelcore::geom::RectT<float> rect{bounds.x + kLinkPadding, bounds.y,
                                           std::max(bounds.width - 2.0f * kLinkPadding, 0.0f),
                                           bounds.height};
    const QFontMetricsF metrics(limner::QtFont::MakeQFont(font));
    LinkTextLayout layout;
    layout.shown = limner::TruncateText(text, metrics, std::max(rect.width, 0.0f), truncation);
    const float width =
        std::min(static_cast<float>(metrics.horizontalAdvance(layout.shown)), rect.width);
    float x = rect.x;
    if (alignment == limner::TextAlignment::Center) {
        x += (rect.width - width) / 2.0f;
    } else if (alignment == limner::TextAlignment::Right) {
        x += rect.width - width;
    }
    const float height = static_cast<float>(metrics.height());
    const float top = rect.y + (rect.height - height) / 2.0f;
    layout.textRect = {x, top, width, height};
    const float baseline = top + static_cast<float>(metrics.ascent());
    layout.underlineThickness = std::max(1.0f, static_cast<float>(metrics.lineWidth()));
    // On a pixel's centre, so that a one-pixel line stays one crisp pixel.
    layout.underlineY =
        std::floor(baseline + std::max(1.0f, static_cast<float>(metrics.underlinePos()))) + 0.5f;
    return layout;
}

void DrawLinkText(limner::Limner& limner, const LinkTextLayout& layout,
                  const limner::FontDescription& font, const limner::ColorRGBA& color,
                  bool underline) {
    if (layout.shown.isEmpty()) {
        return;
    }
    const QString& shown = layout.shown;
    const kelcore::string::string_view text(reinterpret_cast<const char16_t*>(shown.utf16()),
                                            static_cast<std::size_t>(shown.size()));
    // Already shortened to fit: drawing it again with a truncation could only shorten it twice.
    limner.DrawText(text, layout.textRect, font, color, limner::TextAlignment::Left,
                    limner::TextTruncation::None);
    if (underline) {
        const float left = layout.textRect.x;
        const float right = layout.textRect.x + layout.textRect.width;
        limner.FillRect({left, layout.underlineY - layout.underlineThickness / 2.0f, right - left,
                         layout.underlineThickness},
                        color);
    }
}

void DrawLinkFocusRing(limner::Limner& limner, const LinkTextLayout& layout,
                       const kelcore::geom::RectT<float>& bounds, const limner::ColorRGBA& color) {
    const float left = std::max(bounds.x, layout.textRect.x - kLinkPadding) + 0.5f;
    const float right = std::min(bounds.x + bounds.width,
                                 layout.textRect.x + layout.textRect.width + kLinkPadding) -
                        0.5f;
    const float top = std::max(bounds.y, layout.textRect.y - 1.0f) + 0.5f;
    const float bottom =
        std::min(bounds.y + bounds.height, layout.textRect.y + layout.textRect.height + 1.0f) -
        0.5f;
    if (right <= left || bottom <= top) {
        return;
    }
    limner::Path path;
    path.AddRoundedRect({left, top, right - left, bottom - top}, 3.0f);
    limner.StrokePath(path, limner::Pen{1.0f, color});
}

bool IsOnLinkText(const LinkTextLayout& layout, kelcore::geom::PointT<float> point) {
    if (layout.shown.isEmpty()) {
        return false;
    }
    return point.x >= layout.textRect.x - kLinkPadding &&
           point.x < layout.textRect.x + layout.textRect.width + kLinkPadding;
}

kelcore::geom::PointT<float> GetLinkRecommendedSize(limner::Limner& measuring,
                                                    kelcore::string::string_view text,
                                                    const limner::FontDescription& font) {
    const kelcore::geom::PointT<float> size = measuring.MeasureText(text, font);
    return {std::ceil(size.x) + 2.0f * kLinkPadding, std::ceil(size.y)};
}

}  // namespace kelui::controls::detail
