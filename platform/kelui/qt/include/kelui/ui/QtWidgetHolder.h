// What a window of the host is on Qt: the top-level QWidget behind a UI_Window (or a
// TopLevelWindow). Toasts and dialogs find their parent widget through it, by a dynamic_cast of
// the registered main window. Main thread.
#pragma once

class QWidget;

namespace kelui::ui {

class QtWidgetHolder {
public:
    /// The window's widget; null once the host deleted it.
    virtual QWidget* GetQWidget() const = 0;

protected:
    ~QtWidgetHolder() = default;
};

}  // namespace kelui::ui
