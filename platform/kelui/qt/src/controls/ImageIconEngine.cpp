#include "controls/ImageIconEngine.h"

#include <algorithm>

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

#include <kelui/limner/PaintableImage.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>

namespace kelui::controls::detail {

ImageIconEngine::ImageIconEngine(boost::intrusive_ptr<limner::ImageInterface> image,
                                 std::shared_ptr<limner::WidgetDrawingSupplier> supplier)
    : image(std::move(image)), supplier(std::move(supplier)) {}

QIcon ImageIconEngine::MakeIcon(boost::intrusive_ptr<limner::ImageInterface> image,
                                std::shared_ptr<limner::WidgetDrawingSupplier> supplier) {
    if (!image) {
        return QIcon();
    }
    return QIcon(new ImageIconEngine(std::move(image), std::move(supplier)));
}

void ImageIconEngine::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
                            QIcon::State /*state*/) {
    const auto* paintable = dynamic_cast<const limner::PaintableImage*>(image.get());
    if (!paintable || rect.isEmpty() || image->GetWidth() <= 0.0f || image->GetHeight() <= 0.0f) {
        return;
    }
    const auto drawing = supplier ? supplier : ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier();
    skins::Theme theme = drawing->GetTheme();
    if (mode == QIcon::Selected) {
        // A selected menu row is drawn in the highlight colour: the artwork follows its text.
        theme.text = ui::FromQColor(QApplication::palette().color(QPalette::HighlightedText));
    }
    // Wide artwork (a logo) keeps its proportions inside the square Qt asks for.
    const qreal scale = std::min(rect.width() / static_cast<qreal>(image->GetWidth()),
                                 rect.height() / static_cast<qreal>(image->GetHeight()));
    const QSizeF size(image->GetWidth() * scale, image->GetHeight() * scale);
    const QRectF target(rect.x() + (rect.width() - size.width()) / 2.0,
                        rect.y() + (rect.height() - size.height()) / 2.0, size.width(),
                        size.height());
    painter->save();
    if (mode == QIcon::Disabled) {
        painter->setOpacity(painter->opacity() * 0.4);
    }
    paintable->Paint(*painter, target, theme);
    painter->restore();
}

QPixmap ImageIconEngine::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) {
    return scaledPixmap(size, mode, state, 1.0);
}

QPixmap ImageIconEngine::scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                                      qreal scale) {
    QPixmap pixmap(size * scale);
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return pixmap;
}

QSize ImageIconEngine::actualSize(const QSize& size, QIcon::Mode /*mode*/, QIcon::State /*state*/) {
    return size;
}

QIconEngine* ImageIconEngine::clone() const {
    return new ImageIconEngine(image, supplier);
}

QString ImageIconEngine::key() const {
    return QStringLiteral("kelui.ImageIconEngine");
}

}  // namespace kelui::controls::detail
