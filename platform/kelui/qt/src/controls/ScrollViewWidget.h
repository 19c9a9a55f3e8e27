// The widget of a UI_ScrollView: a frameless scroll area with the platform's vertical scroll bar
// and no horizontal one. It does not place the content itself; it tells its node when the
// content has to move (the bar moved, the viewport changed size, the content widget was placed
// by its node), and keeps a widget that gains focus by Tab in view. Owned by the scroll view's
// node; main thread.
#pragma once

#include <QAbstractScrollArea>
#include <QPointer>

namespace kelui::controls::detail {

class ScrollViewWidget final : public QAbstractScrollArea {
    Q_OBJECT
public:
    ScrollViewWidget();

    /// Watches `widget` (the content's) for moves that did not come from scrolling.
    void WatchContentWidget(QWidget* widget);

signals:
    /// The content must be placed again: scrolled, or moved by its node.
    void contentPlacementNeeded();
    /// The viewport changed size: the scroll range must be worked out again.
    void viewportResized();

protected:
    void scrollContentsBy(int dx, int dy) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    QPointer<QWidget> contentWidget;
};

}  // namespace kelui::controls::detail
