// The Qt widgets under the toolkit's buttons and links: QAbstractButton subclasses that leave
// painting and the clickable area to their node, and add what QAbstractButton lacks (Enter
// clicks, the hover state of the clickable area, whether focus came from the keyboard).
// LinkWidget differs only in what screen readers hear: a link instead of a push button.
// Owned by their node; private to the toolkit; main thread.
#pragma once

#include <functional>

#include <QAbstractButton>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/string/String.h>
#include <kelui/ui/UI_Node.h>

namespace kelui::controls::detail {

class ButtonWidget : public QAbstractButton {
    Q_OBJECT
public:
    struct Callbacks {
        /// Paints the whole widget.
        std::function<void(QWidget&)> paint;
        /// Whether a point (widget coordinates) is on the clickable part; empty: all of it.
        std::function<bool(const QPointF&)> hit;
    };

    explicit ButtonWidget(Callbacks callbacks);

    /// Called by the node as it dies: painting and hit testing stop before its parts go.
    void DetachCallbacks() { callbacks = {}; }

    /// Whether the pointer is over the clickable part of the widget.
    bool IsHovered() const { return hovered; }
    /// Whether the widget has focus that the keyboard gave it (or a program, as for a dialog's
    /// first control); a click's focus draws no ring.
    bool HasVisibleFocus() const;
    /// Shows a pointing hand while the pointer is over the clickable part, as links do.
    void SetPointingCursor(bool pointing);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& position) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void UpdateHover(bool inside, const QPointF& position);

    Callbacks callbacks;
    Qt::FocusReason focusReason = Qt::OtherFocusReason;
    bool hovered = false;
    bool pointingCursor = false;
};

/// `text` for QAbstractButton::setText: the toolkit's texts are plain, and an ampersand there
/// would make a keyboard mnemonic of the next letter.
QString ToPlainButtonText(kelcore::string::string_view text);

/// Lets `node` go; when that is its last reference, only once the event that Qt is delivering
/// now is done. An owner may drop a button from inside the button's own click, and the widget
/// must not be deleted under QAbstractButton, which still uses it after the signal.
void ReleaseAfterCurrentEvent(boost::intrusive_ptr<ui::UI_Node> node);

class LinkWidget final : public ButtonWidget {
    Q_OBJECT
public:
    explicit LinkWidget(Callbacks callbacks);
};

}  // namespace kelui::controls::detail
