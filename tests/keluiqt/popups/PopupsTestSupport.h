// Helpers shared by the popups tests: a host window that nodes are pushed into, a dark palette
// for a block, screenshots under /tmp/keluiqt-shots/popups, and waiting on Qt's event loop for a
// condition.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include <QApplication>
#include <QDir>
#include <QPalette>
#include <QPixmap>
#include <QTest>
#include <QWidget>

#include <boost/intrusive_ptr.hpp>

#include <kelui/ui/UI_HostWidgetNode.h>

namespace popupstest {

template <class T, class... Args>
boost::intrusive_ptr<T> Make(Args&&... args) {
    return boost::intrusive_ptr<T>(new T(std::forward<Args>(args)...));
}

/// Runs Qt's event loop until `condition` holds or five seconds pass; answers the condition.
inline bool WaitFor(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 5000);
}

/// A visible top-level window of the host with a node over it, as a plain Qt application
/// hands the toolkit its window.
class HostWindow {
public:
    explicit HostWindow(QRect geometry = QRect(40, 40, 360, 240)) {
        window.setGeometry(geometry);
        window.setWindowTitle(QStringLiteral("Host"));
        window.show();
        node = Make<kelui::ui::UI_HostWidgetNode>(&window);
        static_cast<void>(QTest::qWaitForWindowExposed(&window));
    }
    ~HostWindow() { node.reset(); }

    QWidget window;
    boost::intrusive_ptr<kelui::ui::UI_HostWidgetNode> node;
};

/// The application's palette turned dark for as long as it lives.
class DarkPalette {
public:
    DarkPalette() : saved(QApplication::palette()) {
        QPalette dark;
        dark.setColor(QPalette::Window, QColor(0x26, 0x27, 0x2b));
        dark.setColor(QPalette::WindowText, QColor(0xe6, 0xe6, 0xe6));
        dark.setColor(QPalette::Base, QColor(0x1c, 0x1d, 0x20));
        dark.setColor(QPalette::AlternateBase, QColor(0x2e, 0x2f, 0x33));
        dark.setColor(QPalette::Text, QColor(0xe6, 0xe6, 0xe6));
        dark.setColor(QPalette::Button, QColor(0x33, 0x34, 0x38));
        dark.setColor(QPalette::ButtonText, QColor(0xe6, 0xe6, 0xe6));
        dark.setColor(QPalette::Highlight, QColor(0x26, 0x7f, 0xeb));
        dark.setColor(QPalette::HighlightedText, Qt::white);
        dark.setColor(QPalette::Link, QColor(0x5c, 0xa8, 0xff));
        dark.setColor(QPalette::ToolTipBase, QColor(0x33, 0x34, 0x38));
        dark.setColor(QPalette::ToolTipText, QColor(0xe6, 0xe6, 0xe6));
        dark.setColor(QPalette::Light, QColor(0x3c, 0x3d, 0x42));
        dark.setColor(QPalette::Midlight, QColor(0x36, 0x37, 0x3c));
        dark.setColor(QPalette::Mid, QColor(0x4a, 0x4b, 0x50));
        dark.setColor(QPalette::Dark, QColor(0x18, 0x18, 0x1a));
        dark.setColor(QPalette::Shadow, QColor(0x0c, 0x0c, 0x0d));
        dark.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x80, 0x80, 0x80));
        dark.setColor(QPalette::Disabled, QPalette::Text, QColor(0x80, 0x80, 0x80));
        dark.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x80, 0x80, 0x80));
        QApplication::setPalette(dark);
    }
    ~DarkPalette() { QApplication::setPalette(saved); }

private:
    QPalette saved;
};

/// The library's own icons, in the source tree.
inline std::filesystem::path IconsFolder() {
    return std::filesystem::path(__FILE__).parent_path().parent_path().parent_path().parent_path() /
           "vantrokelui" / "resources" / "icons";
}

/// Saves `widget`'s rendering as /tmp/keluiqt-shots/popups/<name>.png; answers the path, or
/// empty when it could not be written.
inline std::string SaveShot(QWidget& widget, const std::string& name) {
    const QString folder = QStringLiteral("/tmp/keluiqt-shots/popups");
    QDir().mkpath(folder);
    const QString path = folder + QLatin1Char('/') + QString::fromStdString(name) + ".png";
    return widget.grab().save(path) ? path.toStdString() : std::string();
}

}  // namespace popupstest
