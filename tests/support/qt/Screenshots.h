// Screenshots for people to look at, shared by the Qt test programs: a dark application palette
// of the kind a dark desktop gives (for a scope, or set and put back by a fixture), a widget
// rendered into an image at a device pixel ratio, and saving a picture under the build's test
// output and a copy under /tmp/keluiqt-shots/<folder>/. Header-only; main thread.
//
//   const testsupport::ScopedPalette dark(testsupport::DarkPalette());
//   const QImage image = testsupport::RenderWidget(*widget, 2);
//   ASSERT_TRUE(testsupport::SaveScreenshot(image, "status", "offline-dark@2x.png"));
#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include <QApplication>
#include <QColor>
#include <QImage>
#include <QPalette>
#include <QString>
#include <QWidget>

namespace testsupport {

/// A dark palette: dark window and base, light text, the accent blue for selections and links
/// that read on the dark ground, and gray for disabled text.
inline QPalette DarkPalette() {
    QPalette dark;
    const QColor text(230, 230, 230);
    const QColor disabled(120, 120, 120);
    dark.setColor(QPalette::Window, QColor(45, 45, 48));
    dark.setColor(QPalette::WindowText, text);
    dark.setColor(QPalette::Base, QColor(30, 30, 32));
    dark.setColor(QPalette::AlternateBase, QColor(40, 40, 44));
    dark.setColor(QPalette::Text, text);
    dark.setColor(QPalette::Button, QColor(55, 55, 58));
    dark.setColor(QPalette::ButtonText, text);
    dark.setColor(QPalette::Highlight, QColor(38, 127, 235));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::Link, QColor(90, 160, 245));
    // The style's bevels, menus and tool tips read from these.
    dark.setColor(QPalette::ToolTipBase, QColor(60, 60, 60));
    dark.setColor(QPalette::ToolTipText, text);
    dark.setColor(QPalette::Light, QColor(70, 70, 70));
    dark.setColor(QPalette::Midlight, QColor(62, 62, 62));
    dark.setColor(QPalette::Mid, QColor(80, 80, 80));
    dark.setColor(QPalette::Dark, QColor(24, 24, 24));
    dark.setColor(QPalette::Shadow, QColor(12, 12, 12));
    dark.setColor(QPalette::Disabled, QPalette::WindowText, disabled);
    dark.setColor(QPalette::Disabled, QPalette::ButtonText, disabled);
    dark.setColor(QPalette::Disabled, QPalette::Text, disabled);
    return dark;
}

/// The application's palette is `palette` while this lives, and what it was before afterwards.
class ScopedPalette {
public:
    explicit ScopedPalette(const QPalette& palette) : saved(QApplication::palette()) {
        QApplication::setPalette(palette);
    }
    ~ScopedPalette() { QApplication::setPalette(saved); }
    ScopedPalette(const ScopedPalette&) = delete;
    ScopedPalette& operator=(const ScopedPalette&) = delete;

private:
    QPalette saved;
};

/// The application's palette dark while this lives.
class ScopedDarkPalette : public ScopedPalette {
public:
    ScopedDarkPalette() : ScopedPalette(DarkPalette()) {}
};

/// Shows `widget` as a window that never reaches a screen, so that it lays out and paints for
/// rendering.
inline void ShowOffscreen(QWidget& widget) {
    widget.setAttribute(Qt::WA_DontShowOnScreen, true);
    widget.show();
}

/// `widget` and its children rendered into an image of its size at device pixel `ratio` (ratio
/// times as many pixels each way, drawn as a screen of that ratio would), over `background`.
inline QImage RenderWidget(QWidget& widget, int ratio,
                           const QColor& background = QColor(Qt::transparent)) {
    QImage image(widget.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(background);
    widget.render(&image);
    return image;
}

/// Where the pictures of the test program go: the build's test output.
inline std::filesystem::path ScreenshotDirectory() {
    return std::filesystem::path(VANTRO_TEST_OUTPUT_DIR) / "screenshots";
}

/// Saves `image` as `file` (a PNG name) under ScreenshotDirectory() and copies it to
/// /tmp/keluiqt-shots/<folder>/, where people look; false when either could not be written.
inline bool SaveScreenshot(const QImage& image, const std::string& folder,
                           const std::string& file) {
    const std::filesystem::path directory = ScreenshotDirectory();
    const std::filesystem::path shots = std::filesystem::path("/tmp/keluiqt-shots") / folder;
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    std::filesystem::create_directories(shots, error);
    if (!image.save(QString::fromStdString((directory / file).string()))) {
        return false;
    }
    return std::filesystem::copy_file(directory / file, shots / file,
                                      std::filesystem::copy_options::overwrite_existing, error);
}

}  // namespace testsupport
