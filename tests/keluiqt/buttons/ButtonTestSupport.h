// Helpers for the button tests: a shown, active window holding nodes, a picture of one flat
// colour, and pixel helpers over QWidget::grab().
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <QWidget>

#include <boost/intrusive_ptr.hpp>

#include <kelui/limner/PaintableImage.h>
#include <kelui/ui/UI_PictureSupplyMessage.h>
#include <kelui/ui/UI_SubView.h>

namespace buttons_test {

template <class T>
boost::intrusive_ptr<T> Make() {
    return boost::intrusive_ptr<T>(new T);
}

/// A root node whose widget is a shown, active top-level window, so focus and the keyboard work.
class Window {
public:
    explicit Window(float width = 340.0f, float height = 120.0f)
        : root(Make<kelui::ui::UI_SubView>()) {
        root->UI_SetLocalRectF({0.0f, 0.0f, width, height});
        QWidget* widget = root->GetWidget();
        widget->setAutoFillBackground(true);
        widget->show();
        widget->activateWindow();
        activated = QTest::qWaitForWindowActive(widget);
        // The pointer stays where an earlier test left it: park it in a corner, away from the
        // nodes, so that nothing starts out hovered.
        QTest::mouseMove(widget, QPoint(widget->width() - 1, widget->height() - 1));
    }
    ~Window() { root->GetWidget()->hide(); }

    /// Puts `node` at `rect` in the window and shows it.
    void Add(const boost::intrusive_ptr<kelui::ui::UI_Node>& node,
             const kelcore::geom::RectT<float>& rect) {
        root->ChildPushBack(node);
        node->UI_SetLocalRectF(rect);
        node->UI_Show(true);
    }

    QWidget* GetWidget() const { return root->GetWidget(); }
    bool IsActive() const { return activated; }

private:
    boost::intrusive_ptr<kelui::ui::UI_SubView> root;
    bool activated = false;
};

/// A picture that fills its rectangle with one colour; counts how often it was painted.
class FlatImage final : public limner::PaintableImage {
public:
    FlatImage(float width, float height, QColor color)
        : width(width), height(height), color(color) {}

    float GetWidth() const override { return width; }
    float GetHeight() const override { return height; }
    void Paint(QPainter& painter, const QRectF& target,
               const kelui::skins::Theme& /*theme*/) const override {
        painter.fillRect(target, color);
    }

private:
    float width;
    float height;
    QColor color;
};

/// A supply function that hands out `image` and counts the requests in `*requests`.
inline kelui::ui::ImageSupplyFunction SupplyOf(boost::intrusive_ptr<limner::ImageInterface> image,
                                               std::shared_ptr<int> requests = nullptr) {
    return std::make_shared<std::function<void(kelui::ui::ConstMessage*)>>(
        [image, requests](kelui::ui::ConstMessage* message) {
            if (requests) {
                ++*requests;
            }
            if (auto* request = dynamic_cast<kelui::ui::UI_PictureSupplyMessage*>(message)) {
                request->SetImage(image);
            }
        });
}

/// The widget as it is drawn now, at one image pixel per widget pixel.
inline QImage Grab(QWidget* widget) {
    return widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

/// Whether two colours differ by at most `tolerance` in each channel.
inline bool Near(QColor a, QColor b, int tolerance = 2) {
    return std::abs(a.red() - b.red()) <= tolerance &&
           std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

/// The smallest rectangle holding every pixel of `image` near `color`; empty when none is.
inline QRect BoundsOf(const QImage& image, QColor color) {
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (Near(image.pixelColor(x, y), color, 8)) {
                bounds |= QRect(x, y, 1, 1);
            }
        }
    }
    return bounds;
}

/// The columns of `image` that hold pixels far from `background` (ink), as [first, last];
/// nullopt for a blank image.
inline std::optional<std::pair<int, int>> InkColumns(const QImage& image, QColor background,
                                                     int fromX = 0) {
    std::optional<std::pair<int, int>> columns;
    for (int x = fromX; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (!Near(image.pixelColor(x, y), background, 40)) {
                if (!columns) {
                    columns = std::make_pair(x, x);
                }
                columns->second = x;
                break;
            }
        }
    }
    return columns;
}

}  // namespace buttons_test
