#include <kelui/utility/SvgImage.h>

#include <algorithm>
#include <cmath>

#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QSvgRenderer>
#include <QTransform>
#include <QWidget>

#include <kelui/ui/QtConversions.h>

namespace kelui::utility {

namespace {

constexpr char kCurrentColor[] = "currentColor";

QByteArray ToByteArray(const std::string& text) {
    return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
}

/// The colour that monochrome artwork takes on `painter`: the theme's text colour, or its
/// disabled text colour when the painter draws a disabled widget.
QColor InkColor(const QPainter& painter, const kelui::skins::Theme& theme) {
    const auto* widget = dynamic_cast<const QWidget*>(painter.device());
    const bool disabled = widget && !widget->isEnabled();
    return kelui::ui::ToQColor(disabled ? theme.disabledText : theme.text);
}

/// Device pixels per logical pixel that `painter` draws at, outside of any rotation.
qreal DeviceScale(const QPainter& painter) {
    const QPaintEngine* engine = painter.paintEngine();
    const QPaintDevice* device =
        engine && engine->paintDevice() ? engine->paintDevice() : painter.device();
    return device ? device->devicePixelRatioF() : 1.0;
}

}  // namespace

struct SvgImage::Cache {
    QImage image;  ///< the last rendering, exactly at the device pixels it was drawn on
    QRgb ink = 0;  ///< the colour that replaced currentColor in it
};

boost::intrusive_ptr<SvgImage> SvgImage::FromFile(const std::filesystem::path& file) {
    // Through QFile, so that artwork compiled in as Qt resources (":/…") reads like a file.
    QFile input(QString::fromStdString(file.string()));
    if (!input.open(QIODevice::ReadOnly)) {
        return nullptr;
    }
    return FromData(input.readAll().toStdString());
}

boost::intrusive_ptr<SvgImage> SvgImage::FromData(std::string svg) {
    const QSvgRenderer renderer(ToByteArray(svg));
    if (!renderer.isValid()) {
        return nullptr;
    }
    // The width and height attributes when the artwork has them, else its view box.
    QSizeF size = renderer.defaultSize();
    if (size.isEmpty()) {
        size = renderer.viewBoxF().size();
    }
    // Artwork without any size cannot be placed in a layout: treat it as unusable.
    if (size.isEmpty()) {
        return nullptr;
    }
    return boost::intrusive_ptr<SvgImage>(new SvgImage(
        std::move(svg), static_cast<float>(size.width()), static_cast<float>(size.height())));
}

SvgImage::SvgImage(std::string svg, float width, float height)
    : svg(std::move(svg)),
      width(width),
      height(height),
      monochrome(this->svg.find(kCurrentColor) != std::string::npos),
      cache(std::make_unique<Cache>()) {}

SvgImage::~SvgImage() = default;

void SvgImage::Paint(QPainter& painter, const QRectF& target,
                     const kelui::skins::Theme& theme) const {
    if (target.isEmpty()) {
        return;
    }
    // Where the painter only translates and scales, the rendering covers whole device pixels
    // and is copied one to one: a resampled icon would look blurred.
    QRectF drawn = target;
    QSize pixels;
    const QTransform toDevice = painter.deviceTransform();
    if (toDevice.type() <= QTransform::TxScale && toDevice.m11() > 0.0 && toDevice.m22() > 0.0) {
        const QRectF exact = toDevice.mapRect(target);
        const long left = std::lround(exact.left());
        const long top = std::lround(exact.top());
        const int pixelWidth = std::max(1, static_cast<int>(std::lround(exact.right()) - left));
        const int pixelHeight = std::max(1, static_cast<int>(std::lround(exact.bottom()) - top));
        pixels = QSize(pixelWidth, pixelHeight);
        drawn = toDevice.inverted().mapRect(
            QRectF(static_cast<qreal>(left), static_cast<qreal>(top), pixelWidth, pixelHeight));
    } else {
        const qreal scale = DeviceScale(painter);
        pixels = QSize(std::max(1, static_cast<int>(std::lround(target.width() * scale))),
                       std::max(1, static_cast<int>(std::lround(target.height() * scale))));
    }

    const QColor ink = InkColor(painter, theme);
    const QRgb inkKey = monochrome ? ink.rgb() : 0;
    if (cache->image.size() != pixels || cache->ink != inkKey) {
        QByteArray data = ToByteArray(svg);
        if (monochrome) {
            data.replace(kCurrentColor, ink.name(QColor::HexRgb).toLatin1());
        }
        QSvgRenderer renderer(data);
        QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter imagePainter(&image);
        imagePainter.setRenderHint(QPainter::Antialiasing, true);
        imagePainter.setRenderHint(QPainter::SmoothPixmapTransform, true);
        renderer.render(&imagePainter, QRectF(QPointF(0.0, 0.0), QSizeF(pixels)));
        imagePainter.end();
        cache->image = std::move(image);
        cache->ink = inkKey;
    }
    painter.drawImage(drawn, cache->image);
}

}  // namespace kelui::utility
