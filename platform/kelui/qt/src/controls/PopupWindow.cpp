#include "controls/PopupWindow.h"

#include <QCloseEvent>
#include <QMouseEvent>
#include <QPainter>

#include <kelui/controls/UI_TouchPopupContainer.h>
#include <kelui/ui/QtConversions.h>

namespace kelui::controls::detail {

namespace {

// Lies above the content and draws only the window's edge; the pointer goes through it.
class PopupBorder final : public QWidget {
public:
    PopupBorder(QWidget* parent, std::function<QColor()> color)
        : QWidget(parent), color(std::move(color)) {
        setAttribute(Qt::WA_TransparentForMouseEvents, true);
        setAttribute(Qt::WA_NoSystemBackground, true);
        setFocusPolicy(Qt::NoFocus);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setPen(QPen(color(), 1.0));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    }

private:
    std::function<QColor()> color;
};

}  // namespace

PopupWindow::PopupWindow(UI_TouchPopupContainer& container)
    : QWidget(nullptr, Qt::Popup | Qt::FramelessWindowHint), container(&container) {
    setAttribute(Qt::WA_DeleteOnClose, false);
    // The border is a child of this window and dies with it.
    border = new PopupBorder(this, [this] {
        return this->container
                   ? ui::ToQColor(skins::GetPaletteGrayColor(this->container->GetTheme(), 4))
                   : palette().color(QPalette::Mid);
    });
    border->setGeometry(rect());
}

void PopupWindow::closeEvent(QCloseEvent* event) {
    if (container && !container->OnWindowCloseRequested()) {
        event->ignore();
        return;
    }
    event->accept();
}

void PopupWindow::mousePressEvent(QMouseEvent* event) {
    if (container && !rect().contains(event->position().toPoint())) {
        bool onAnchor = false;
        if (const auto anchor = container->GetAnchor()) {
            if (const QWidget* widget = anchor->GetWidget()) {
                const QRect area(widget->mapToGlobal(QPoint(0, 0)), widget->size());
                onAnchor = area.contains(event->globalPosition().toPoint());
            }
        }
        setAttribute(Qt::WA_NoMouseReplay, onAnchor);
    }
    QWidget::mousePressEvent(event);
}

void PopupWindow::resizeEvent(QResizeEvent* event) {
    border->setGeometry(rect());
    border->raise();
    QWidget::resizeEvent(event);
}

}  // namespace kelui::controls::detail
