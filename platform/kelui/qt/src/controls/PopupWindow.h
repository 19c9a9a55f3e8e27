// The window of a UI_TouchPopupContainer: a frameless Qt::Popup, so that Qt itself closes it on
// a click outside it or on Esc (and grabs the pointer for it under X11). Every request to close
// goes to the container first, which commits or refuses. A press on the anchor only closes it
// (Qt does not hand the press on to the anchor, which would open the popup again). It paints a
// 1-pixel border in palette gray 4 above its content. Private to the toolkit; main thread.
#pragma once

#include <QWidget>

namespace kelui::controls {
class UI_TouchPopupContainer;
}

namespace kelui::controls::detail {

class PopupWindow final : public QWidget {
    Q_OBJECT
public:
    explicit PopupWindow(UI_TouchPopupContainer& container);

    /// The container dies before its window is deleted: from then on closing is always allowed.
    void DetachContainer() { container = nullptr; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    UI_TouchPopupContainer* container;
    QWidget* border;
};

}  // namespace kelui::controls::detail
