#include "controls/ScrollViewWidget.h"

#include <QApplication>
#include <QEvent>
#include <QScrollBar>

namespace kelui::controls::detail {

namespace {

// Pixels per wheel notch line and per arrow key: about a line of text.
constexpr int kSingleStep = 20;

}  // namespace

ScrollViewWidget::ScrollViewWidget() {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The scroll view turns the bar on and off as its content needs it.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::StrongFocus);
    // The panel behind the scroll view shows through, as it does around it.
    viewport()->setAutoFillBackground(false);
    verticalScrollBar()->setSingleStep(kSingleStep);
}

void ScrollViewWidget::WatchContentWidget(QWidget* widget) {
    if (contentWidget) {
        contentWidget->removeEventFilter(this);
    }
    contentWidget = widget;
    if (widget) {
        widget->installEventFilter(this);
    }
}

void ScrollViewWidget::scrollContentsBy(int /*dx*/, int /*dy*/) {
    emit contentPlacementNeeded();
}

void ScrollViewWidget::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    emit viewportResized();
}

bool ScrollViewWidget::eventFilter(QObject* watched, QEvent* event) {
    // The content's node places its widget where the content would be unscrolled whenever the
    // node or one above it moves: put it back where the scroll position wants it.
    if (watched == contentWidget && event->type() == QEvent::Move) {
        emit contentPlacementNeeded();
    }
    return QAbstractScrollArea::eventFilter(watched, event);
}

bool ScrollViewWidget::focusNextPrevChild(bool next) {
    const bool moved = QAbstractScrollArea::focusNextPrevChild(next);
    QWidget* focused = QApplication::focusWidget();
    if (!moved || !focused || !contentWidget || !contentWidget->isAncestorOf(focused)) {
        return moved;
    }
    // Scroll as little as needed for the newly focused control to be seen whole.
    const QRect inViewport(focused->mapTo(viewport(), QPoint(0, 0)), focused->size());
    QScrollBar* bar = verticalScrollBar();
    if (inViewport.top() < 0) {
        bar->setValue(bar->value() + inViewport.top());
    } else if (inViewport.bottom() >= viewport()->height()) {
        bar->setValue(bar->value() + inViewport.bottom() + 1 - viewport()->height());
    }
    return moved;
}

}  // namespace kelui::controls::detail
