// Helpers shared by the popups tests: a host window that nodes are pushed into, the library's
// icons, and waiting on Qt's event loop for a condition.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

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

/// The library's own icons, in the source tree.
inline std::filesystem::path IconsFolder() {
    return std::filesystem::path(__FILE__).parent_path().parent_path().parent_path().parent_path() /
           "vantrokelui" / "resources" / "icons";
}

}  // namespace popupstest
