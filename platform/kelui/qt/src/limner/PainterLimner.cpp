#include "limner/PainterLimner.h"

#include <QPaintDevice>
#include <QPainterPath>
#include <QTextLayout>

#include <kelui/limner/PaintableImage.h>
#include <kelui/ui/QtConversions.h>

#include "limner/QtFont.h"

namespace limner {

using kelui::ui::ToQColor;
using kelui::ui::ToQRectF;

std::shared_ptr<Font> MeasuringLimner::GetFont(const FontDescription& description) const {
    return std::make_shared<QtFont>(description);
}

PainterLimner::PainterLimner(QPainter& painter, kelui::skins::Theme theme)
    : painter(painter), theme(std::move(theme)) {
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
}

float PainterLimner::GetDevicePixelRatio() const {
    const QPaintDevice* device = painter.device();
    return device ? static_cast<float>(device->devicePixelRatioF()) : 1.0f;
}

void PainterLimner::ClipRect(const kelcore::geom::RectT<float>& rect) {
    painter.setClipRect(ToQRectF(rect), Qt::IntersectClip);
}

void PainterLimner::FillRect(const kelcore::geom::RectT<float>& rect, const ColorRGBA& color) {
    painter.fillRect(ToQRectF(rect), ToQColor(color));
}

namespace {
QPen ToQPen(const Pen& pen) {
    QPen qpen(ToQColor(pen.color));
    qpen.setWidthF(pen.width);
    qpen.setJoinStyle(Qt::MiterJoin);
    qpen.setCapStyle(Qt::SquareCap);
    return qpen;
}
}  // namespace

void PainterLimner::StrokeRect(const kelcore::geom::RectT<float>& rect, const Pen& pen) {
    painter.save();
    painter.setPen(ToQPen(pen));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(ToQRectF(rect));
    painter.restore();
}

QPainterPath ToQPainterPath(const Path& path) {
    QPainterPath qpath;
    for (const Path::Command& command : path.GetCommands()) {
        switch (command.type) {
            case Path::CommandType::MoveTo:
                qpath.moveTo(kelui::ui::ToQPointF(command.points[0]));
                break;
            case Path::CommandType::LineTo:
                qpath.lineTo(kelui::ui::ToQPointF(command.points[0]));
                break;
            case Path::CommandType::CubicTo:
                qpath.cubicTo(kelui::ui::ToQPointF(command.points[0]),
                              kelui::ui::ToQPointF(command.points[1]),
                              kelui::ui::ToQPointF(command.points[2]));
                break;
            case Path::CommandType::Close:
                qpath.closeSubpath();
                break;
            case Path::CommandType::Rect:
                qpath.addRect(ToQRectF(command.rect));
                break;
            case Path::CommandType::RoundedRect:
                qpath.addRoundedRect(ToQRectF(command.rect), command.radius, command.radius);
                break;
        }
    }
    return qpath;
}

void PainterLimner::FillPath(const Path& path, const ColorRGBA& color) {
    painter.fillPath(ToQPainterPath(path), ToQColor(color));
}

void PainterLimner::StrokePath(const Path& path, const Pen& pen) {
    painter.strokePath(ToQPainterPath(path), ToQPen(pen));
}

void PainterLimner::DrawLine(kelcore::geom::PointT<float> from, kelcore::geom::PointT<float> to,
                             const Pen& pen) {
    painter.save();
    painter.setPen(ToQPen(pen));
    painter.drawLine(kelui::ui::ToQPointF(from), kelui::ui::ToQPointF(to));
    painter.restore();
}

QString TruncateText(const QString& text, const QFontMetricsF& metrics, float width,
                     TextTruncation truncation) {
    switch (truncation) {
        case TextTruncation::Start:
            return metrics.elidedText(text, Qt::ElideLeft, width);
        case TextTruncation::End:
            return metrics.elidedText(text, Qt::ElideRight, width);
        case TextTruncation::Path:
            return metrics.elidedText(text, Qt::ElideMiddle, width);
        case TextTruncation::None:
            break;
    }
    return text;
}

namespace {
Qt::Alignment ToQtAlignment(TextAlignment alignment) {
    switch (alignment) {
        case TextAlignment::Center:
            return Qt::AlignHCenter;
        case TextAlignment::Right:
            return Qt::AlignRight;
        case TextAlignment::Left:
            break;
    }
    return Qt::AlignLeft;
}
}  // namespace

void PainterLimner::DrawText(kelcore::string::string_view text,
                             const kelcore::geom::RectT<float>& rect, const FontDescription& font,
                             const ColorRGBA& color, TextAlignment alignment,
                             TextTruncation truncation) {
    const QFont qfont = QtFont::MakeQFont(font);
    const QFontMetricsF metrics(qfont);
    const QString shown = TruncateText(kelui::ui::ToQString(text), metrics, rect.width, truncation);
    painter.save();
    painter.setFont(qfont);
    painter.setPen(ToQColor(color));
    painter.drawText(ToQRectF(rect), static_cast<int>(ToQtAlignment(alignment) | Qt::AlignVCenter),
                     shown);
    painter.restore();
}

void PainterLimner::DrawWrappedText(kelcore::string::string_view text,
                                    const kelcore::geom::RectT<float>& rect,
                                    const FontDescription& font, const ColorRGBA& color,
                                    TextAlignment alignment) {
    // The same layout as QtFont::GetWrappedTextHeight, so what is drawn is what was measured.
    QTextLayout layout(kelui::ui::ToQString(text), QtFont::MakeQFont(font));
    QTextOption option(ToQtAlignment(alignment));
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    qreal y = 0.0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(rect.width);
        line.setPosition(QPointF(0.0, y));
        y += line.height();
    }
    layout.endLayout();
    painter.save();
    painter.setPen(ToQColor(color));
    painter.setClipRect(ToQRectF(rect), Qt::IntersectClip);
    layout.draw(&painter, QPointF(rect.x, rect.y));
    painter.restore();
}

void PainterLimner::DrawImage(const ImageInterface& image, const kelcore::geom::RectT<float>& rect,
                              float opacity) {
    const auto* paintable = dynamic_cast<const PaintableImage*>(&image);
    if (!paintable) {
        return;
    }
    painter.save();
    painter.setOpacity(painter.opacity() * opacity);
    paintable->Paint(painter, ToQRectF(rect), theme);
    painter.restore();
}

}  // namespace limner
