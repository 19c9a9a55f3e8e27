// A QIcon over one of the toolkit's images, so that Qt's own widgets (menus, buttons) show the
// same picture that nodes draw: painted at whatever size and device pixel ratio Qt asks for, with
// monochrome artwork taking the theme's text colour (the highlighted text colour on a selected
// menu row). Private to the toolkit; main thread.
#pragma once

#include <memory>

#include <QIconEngine>

#include <boost/intrusive_ptr.hpp>

#include <kelui/limner/ImageInterface.h>
#include <kelui/limner/WidgetDrawingSupplier.h>

namespace kelui::controls::detail {

class ImageIconEngine final : public QIconEngine {
public:
    /// Draws `image` with the theme of `supplier` (the default supplier when null).
    ImageIconEngine(boost::intrusive_ptr<limner::ImageInterface> image,
                    std::shared_ptr<limner::WidgetDrawingSupplier> supplier);

    /// A QIcon that owns a new engine over `image`; a null QIcon for a null image.
    static QIcon MakeIcon(boost::intrusive_ptr<limner::ImageInterface> image,
                          std::shared_ptr<limner::WidgetDrawingSupplier> supplier);

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                         qreal scale) override;
    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QIconEngine* clone() const override;
    QString key() const override;

private:
    boost::intrusive_ptr<limner::ImageInterface> image;
    std::shared_ptr<limner::WidgetDrawingSupplier> supplier;
};

}  // namespace kelui::controls::detail
