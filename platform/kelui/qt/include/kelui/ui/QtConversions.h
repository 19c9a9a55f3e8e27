// Conversions between the toolkit's plain values and Qt's, for the toolkit's implementation and
// for hosts that hand Qt objects to it. Header-only; any thread.
#pragma once

#include <QColor>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelcore/string/String.h>
#include <kelui/limner/ColorRGBA.h>

namespace kelui::ui {

inline QString ToQString(kelcore::string::string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}
inline kelcore::string::string FromQString(const QString& text) {
    return kelcore::string::string(reinterpret_cast<const char16_t*>(text.utf16()),
                                   static_cast<std::size_t>(text.size()));
}
inline QColor ToQColor(const limner::ColorRGBA& color) {
    return QColor::fromRgbF(color.red, color.green, color.blue, color.alpha);
}
inline limner::ColorRGBA FromQColor(const QColor& color) {
    return limner::ColorRGBA{static_cast<float>(color.redF()), static_cast<float>(color.greenF()),
                             static_cast<float>(color.blueF()), static_cast<float>(color.alphaF())};
}
inline QRectF ToQRectF(const kelcore::geom::RectT<float>& rect) {
    return QRectF(rect.x, rect.y, rect.width, rect.height);
}
inline kelcore::geom::RectT<float> FromQRectF(const QRectF& rect) {
    return {static_cast<float>(rect.x()), static_cast<float>(rect.y()),
            static_cast<float>(rect.width()), static_cast<float>(rect.height())};
}
inline QPointF ToQPointF(kelcore::geom::PointT<float> point) {
    return QPointF(point.x, point.y);
}

}  // namespace kelui::ui
