// The widget of a UI_Popup: a focusable button that paints through its node's UI_Draw, opens the
// node's list on a press (mouse or Space) or on Alt+Down / Alt+Up / F4, and owns the list (a
// QMenu). It reports the list's picks and closing to the node. Private to the toolkit; main
// thread.
#pragma once

#include <QAbstractButton>

class QMenu;

namespace kelui::controls {
class UI_Popup;
}

namespace kelui::controls::detail {

class PopupButtonWidget final : public QAbstractButton {
    Q_OBJECT
public:
    explicit PopupButtonWidget(UI_Popup& popup);
    ~PopupButtonWidget() override;

    /// The node dies before its widget is deleted: from then on the widget does nothing.
    void DetachNode();
    UI_Popup* GetPopup() const { return popup; }
    QMenu* GetMenu() const { return menu; }
    /// What screen readers hear when the owner set no accessible name.
    QString GetFallbackName() const;
    /// Whether the focus ring shows: the button has the focus and the keyboard brought it there
    /// (a click or a popup opening does not light it).
    bool HasVisibleFocus() const { return hasFocus() && keyboardFocus; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    UI_Popup* popup;
    QMenu* menu;
    bool keyboardFocus = false;
};

}  // namespace kelui::controls::detail
