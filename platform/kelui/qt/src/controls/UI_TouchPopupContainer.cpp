#include <kelui/controls/UI_TouchPopupContainer.h>

#include <cmath>

#include <QWidget>
#include <QWindow>

#include <kelcore/logging/Logging.h>
#include <kelui/ui/UI_NodeManager.h>

#include "controls/PopupWindow.h"

namespace kelui::controls {

UI_TouchPopupContainer::UI_TouchPopupContainer(
    std::shared_ptr<limner::WidgetDrawingSupplier> supplier,
    boost::intrusive_ptr<ui::UI_Node> anchor, bool first, bool second, bool third,
    std::uint32_t dpiSelectionType, bool fifth)
    : UI_Node(new detail::PopupWindow(*this)),
      viewContainer(new OS_ViewContainer),
      anchor(anchor),
      options{first, second, third, dpiSelectionType, fifth} {
    window = static_cast<detail::PopupWindow*>(GetWidget());
    UI_SetDrawSupplier(supplier ? std::move(supplier)
                                : ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
    ChildPushBack(viewContainer);
    viewContainer->UI_Show(true);
}

UI_TouchPopupContainer::~UI_TouchPopupContainer() {
    if (window) {
        HideWindowWithoutCommit();
        window->DetachContainer();
    }
}

void UI_TouchPopupContainer::InstallNotifyOnCommit(std::function<void()> commit) {
    commitFunction = std::move(commit);
}

void UI_TouchPopupContainer::StartPopup() {
    if (!UI_IsShown()) {
        UI_Show(true);  // shows the window through ApplyVisibility
    } else if (!IsPopupShown()) {
        ShowWindow();
    }
    FocusContent();
}

void UI_TouchPopupContainer::SetContentSize(float x, float y, float width, float height) {
    viewContainer->UI_SetLocalRectF({0.0f, 0.0f, width, height});
    UI_SetLocalRectF({x, y, width, height});  // sizes the window to cover the content
    // The window lies exactly where the caller put it, even partly off screen: the caller's
    // placement rules (right edges aligned with the anchor) are what the user expects.
    const QPoint topLeft(static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y)));
    window->move(topLeft);
}

void UI_TouchPopupContainer::UI_Activate() {
    if (IsPopupShown()) {
        window->raise();
    }
}

bool UI_TouchPopupContainer::IsPopupShown() const {
    return window && window->isVisible();
}

void UI_TouchPopupContainer::ApplyVisibility() {
    if (closingFromWindow || !window) {
        return;  // the window is closing by itself
    }
    if (UI_IsShown()) {
        ShowWindow();
    } else {
        HideWindowWithoutCommit();
    }
}

void UI_TouchPopupContainer::ShowWindow() {
    if (window->isVisible()) {
        return;
    }
    if (const auto anchorNode = anchor.Lock()) {
        // The window manager keeps the popup with the window that it hangs from.
        QWidget* anchorWidget = anchorNode->GetWidget();
        if (anchorWidget && anchorWidget->window()->windowHandle()) {
            window->winId();
            window->windowHandle()->setTransientParent(anchorWidget->window()->windowHandle());
        }
    }
    window->show();
}

void UI_TouchPopupContainer::HideWindowWithoutCommit() {
    if (!window->isVisible()) {
        return;
    }
    hidingWithoutCommit = true;
    window->hide();
    hidingWithoutCommit = false;
}

void UI_TouchPopupContainer::FocusContent() {
    if (!window->isVisible()) {
        return;
    }
    for (QWidget* widget = window->nextInFocusChain(); widget && widget != window;
         widget = widget->nextInFocusChain()) {
        if (widget->isVisibleTo(window) && widget->isEnabled() &&
            (widget->focusPolicy() & Qt::TabFocus) != 0) {
            widget->setFocus(Qt::PopupFocusReason);
            return;
        }
    }
    window->setFocus(Qt::PopupFocusReason);
}

bool UI_TouchPopupContainer::OnWindowCloseRequested() {
    if (hidingWithoutCommit || committing) {
        return true;
    }
    if (childMenuShowing) {
        return false;
    }
    // The commit function may drop its owner's last reference to this popup.
    const boost::intrusive_ptr<UI_TouchPopupContainer> keep(this);
    closingFromWindow = true;
    UI_Show(false);  // Qt hides the window once this returns
    closingFromWindow = false;
    committing = true;
    struct ClearOnExit {
        bool& flag;
        ~ClearOnExit() { flag = false; }
    } clear{committing};
    if (const auto commit = commitFunction) {
        try {
            commit();
        } catch (...) {
            // Qt's event loop called this; an exception must not unwind through it.
            kelcore::logging::LogException("UI_TouchPopupContainer commit",
                                           std::current_exception());
        }
    }
    return true;
}

skins::Theme UI_TouchPopupContainer::GetTheme() const {
    const auto supplier = UI_GetDrawSupplierOrDefault();
    return supplier->GetTheme();
}

}  // namespace kelui::controls
