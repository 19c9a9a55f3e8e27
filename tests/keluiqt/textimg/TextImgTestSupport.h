// Helpers shared by the tests of text, images, dividers, progress bars and the clipboard: the
// library's artwork folder, a dark application palette for the length of a scope (the shared
// one), and pixel reading of what a node's widget paints. Main thread.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include <QColor>
#include <QImage>
#include <QPixmap>
#include <QWidget>

#include <boost/intrusive_ptr.hpp>

#include <kelui/ui/UI_Node.h>

#include "support/qt/Screenshots.h"

namespace textimg_test {

using testsupport::ScopedDarkPalette;

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
