// Helpers shared by the tests of text, images, dividers, progress bars and the clipboard: the
// library's artwork folder, a dark application palette for the length of a scope, and pixel
// reading of what a node's widget paints. Main thread.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include <QApplication>
#include <QColor>
#include <QImage>
#include <QPalette>
#include <QPixmap>
#include <QWidget>

#include <boost/intrusive_ptr.hpp>

#include <kelui/ui/UI_Node.h>

namespace textimg_test {

/// vantrokelui/resources/icons of this source tree.
inline std::filesystem::path ArtworkFolder() {
    return (std::filesystem::path(__FILE__).parent_path() / "../../../vantrokelui/resources/icons")
        .lexically_normal();
}

/// Writes `text` to `file`; false when it could not.
inline bool WriteFile(const std::filesystem::path& file, const std::string& text) {
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    return static_cast<bool>(stream);
}

/// A square of `size` units drawn wholly in currentColor: every pixel is the ink.
inline std::string InkSquareSvg(int size) {
    const std::string side = std::to_string(size);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + side + "\" height=\"" + side +
           "\" viewBox=\"0 0 " + side + " " + side + "\"><rect x=\"0\" y=\"0\" width=\"" + side +
           "\" height=\"" + side + "\" fill=\"currentColor\"/></svg>";
}

/// A dark palette of the kind a dark desktop gives.
inline QPalette MakeDarkPalette() {
    QPalette palette(QColor(0x3a, 0x3a, 0x3a), QColor(0x2b, 0x2b, 0x2b));
    const QColor text(0xe8, 0xe8, 0xe8);
    const QColor disabled(0x80, 0x80, 0x80);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::Base, QColor(0x1f, 0x1f, 0x1f));
    palette.setColor(QPalette::AlternateBase, QColor(0x33, 0x33, 0x33));
    palette.setColor(QPalette::Highlight, QColor(0x26, 0x7f, 0xeb));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x5a, 0xa2, 0xff));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, disabled);
    palette.setColor(QPalette::Disabled, QPalette::Text, disabled);
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, disabled);
    return palette;
}

/// The application's palette is dark while this lives, and what it was afterwards.
class ScopedDarkPalette {
public:
    ScopedDarkPalette() : saved(QApplication::palette()) {
        QApplication::setPalette(MakeDarkPalette());
    }
    ~ScopedDarkPalette() { QApplication::setPalette(saved); }
    ScopedDarkPalette(const ScopedDarkPalette&) = delete;
    ScopedDarkPalette& operator=(const ScopedDarkPalette&) = delete;

private:
    QPalette saved;
};

/// What the node's widget paints, as Qt grabs it (background, node, children).
inline QImage Grab(const kelui::ui::UI_Node& node) {
    return node.GetWidget()->grab().toImage().convertToFormat(QImage::Format_ARGB32);
}

/// Whether any pixel of `image` is exactly `color` (opaque).
inline bool HasPixel(const QImage& image, QColor color) {
    const QRgb wanted = color.rgb();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == wanted) {
                return true;
            }
        }
    }
    return false;
}

template <class T>
boost::intrusive_ptr<T> Make() {
    return boost::intrusive_ptr<T>(new T);
}

}  // namespace textimg_test
