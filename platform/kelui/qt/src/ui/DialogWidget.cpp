#include "ui/DialogWidget.h"

#include <QKeyEvent>

#include <kelui/ui/UI_Dialog.h>

namespace kelui::ui::detail {

DialogWidget::DialogWidget(UI_Dialog& node, QWidget* parent) : QDialog(parent), node(&node) {}

void DialogWidget::reject() {
    if (node) {
        node->OnCancelRequested();
        return;
    }
    QDialog::reject();
}

void DialogWidget::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    if (enter && modifiers == Qt::NoModifier && node) {
        // Enter belongs to the commit button alone, even when it cannot act now.
        node->OnCommitRequested();
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

}  // namespace kelui::ui::detail
