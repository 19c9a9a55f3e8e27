#include <kelui/ui/UI_Dialog.h>

#include <algorithm>
#include <cmath>

#include <QGuiApplication>
#include <QPointer>
#include <QScreen>
#include <QWindow>

#include <kelui/controls/UI_Button.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>

#include "ui/DialogWidget.h"

namespace kelui::ui {

struct UI_Dialog::ParentWindow {
    QPointer<QWidget> window;
};

UI_Dialog::UI_Dialog(std::shared_ptr<limner::WidgetDrawingSupplier> supplier,
                     kelcore::string::string_view title, kelcore::geom::PointT<float> position,
                     QWidget* parent)
    : UI_Node(new detail::DialogWidget(*this, nullptr)),
      parentWindow(std::make_unique<ParentWindow>()),
      viewContainer(new controls::OS_ViewContainer) {
    dialog = static_cast<detail::DialogWidget*>(GetWidget());
    parentWindow->window = parent ? parent->window() : nullptr;
    dialog->setWindowTitle(ToQString(title));
    dialog->move(static_cast<int>(std::lround(position.x)),
                 static_cast<int>(std::lround(position.y)));
    UI_SetDrawSupplier(supplier ? std::move(supplier)
                                : UI_NodeManager::Get(0).GetDefaultDrawSupplier());
    ChildPushBack(viewContainer);
    viewContainer->UI_Show(true);
}

UI_Dialog::~UI_Dialog() {
    if (dialog) {
        dialog->DetachNode();
        if (dialog->isVisible()) {
            dialog->done(0);
        }
    }
}

void UI_Dialog::SetButtons(boost::intrusive_ptr<controls::UI_Button> cancel,
                           boost::intrusive_ptr<controls::UI_Button> commit) {
    cancelButton = std::move(cancel);
    commitButton = std::move(commit);
}

int UI_Dialog::RunModal() {
    if (shownModal || !dialog) {
        return 0;
    }
    // The owner may drop the dialog from inside the modal loop (its content closing it).
    const boost::intrusive_ptr<UI_Dialog> keep(this);
    QWidget* parent = parentWindow->window.data();
    if (parent && parent->windowHandle()) {
        // Above its parent window, as a child dialog would be, without being its Qt child.
        dialog->winId();
        dialog->windowHandle()->setTransientParent(parent->windowHandle());
    }
    shownModal = true;
    UI_Show(true);
    const int result = dialog->exec();
    shownModal = false;
    UI_Show(false);
    return result == QDialog::Accepted ? 1 : 0;
}

void UI_Dialog::DefaultCloseCancel() {
    Close(0);
}

void UI_Dialog::Position() {
    const QWidget* parent = parentWindow->window.data();
    const QScreen* screen = parent ? parent->screen() : QGuiApplication::primaryScreen();
    if (!screen) {
        return;
    }
    const QRect area = screen->availableGeometry();
    const QRect around = parent ? parent->frameGeometry() : area;
    const QSize size = dialog->frameGeometry().size();
    QPoint topLeft(around.x() + (around.width() - size.width()) / 2,
                   around.y() + (around.height() - size.height()) / 2);
    topLeft.setX(std::max(area.left(), std::min(topLeft.x(), area.right() + 1 - size.width())));
    topLeft.setY(std::max(area.top(), std::min(topLeft.y(), area.bottom() + 1 - size.height())));
    dialog->move(topLeft);
}

void UI_Dialog::SetContentSize(float width, float height) {
    viewContainer->UI_SetLocalRectF({0.0f, 0.0f, width, height});
    const auto rect = UI_GetLocalRectF();
    if (rect.width <= 0.0f || rect.height <= 0.0f) {
        UI_SetLocalRectF({rect.x, rect.y, width, height});
    }
}

void UI_Dialog::UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) {
    if (dialog) {
        dialog->setMinimumSize(0, 0);
        dialog->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    }
    UI_Node::UI_SetLocalRectF(rect);
    if (dialog) {
        // The content is laid out for this size: the user gets no grip to change it.
        dialog->setFixedSize(dialog->size());
    }
}

void UI_Dialog::UI_Activate() {
    if (dialog && dialog->isVisible()) {
        UI_Node::UI_Activate();
    }
}

void UI_Dialog::ApplyVisibility() {
    if (!UI_IsShown()) {
        Close(committing ? 1 : 0);
    }
}

void UI_Dialog::OnCancelRequested() {
    const boost::intrusive_ptr<UI_Dialog> keep(this);
    if (const auto cancel = cancelButton) {
        cancel->Click();
    }
    Close(0);
}

bool UI_Dialog::OnCommitRequested() {
    const auto commit = commitButton;
    if (!commit || !commit->UI_IsEnabled()) {
        return false;
    }
    const boost::intrusive_ptr<UI_Dialog> keep(this);
    committing = true;
    commit->Click();
    committing = false;
    Close(1);
    return true;
}

void UI_Dialog::Close(int result) {
    if (dialog && dialog->isVisible()) {
        dialog->done(result);
    }
}

}  // namespace kelui::ui
