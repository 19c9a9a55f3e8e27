// A top-level window of a plain Qt host, as the toolkit's Qt-free side knows it: a UI_Window
// over a QWidget that the host owns (held by QPointer, so a deleted window reads as gone). The
// host makes one for its main window and registers it with SetMainTopLevelWindow; toasts and
// message boxes then belong to that window. Made on the main thread; the title may be read on
// any thread.
//
//   auto window = std::make_shared<kelui::ui::QtWindow>(&mainWindow);
//   kelui::ui::SetMainTopLevelWindow(window);
#pragma once

#include <memory>

#include <QPointer>
#include <QWidget>

#include <kelui/ui/QtWidgetHolder.h>
#include <kelui/ui/UI_Window.h>

namespace kelui::ui {

class QtWindow final : public UI_Window, public QtWidgetHolder {
public:
    /// Wraps `widget`'s top-level window. Main thread.
    explicit QtWindow(QWidget* widget);
    ~QtWindow() override;

    /// The window's title as it is now; empty once the window is gone. Any thread.
    kelcore::string::string GetTitle() const override;
    /// The window; null once the host deleted it. Main thread.
    QWidget* GetQWidget() const override { return window.data(); }

private:
    struct TitleState;
    QPointer<QWidget> window;
    std::shared_ptr<TitleState> title;
};

}  // namespace kelui::ui
