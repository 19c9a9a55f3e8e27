// The host's main window on Qt, as the toolkit knows it: a TopLevelWindow over a QWidget that
// the host owns (held by QPointer, so a deleted window reads as gone), with a workspace whose
// drawing supplier follows the application's palette. The host makes one and registers it with
// kelui::ui::SetMainTopLevelWindow; toasts, message boxes and modal dialogs then belong to that
// window. Main thread.
//
//   auto window = std::make_shared<kelworkspace::workspace::QtTopLevelWindow>(&mainWindow);
//   kelui::ui::SetMainTopLevelWindow(window);
#pragma once

#include <memory>

#include <QPointer>
#include <QWidget>

#include <kelui/ui/QtWidgetHolder.h>
#include <kelworkspace/workspace/TopLevelWindow.h>

namespace kelworkspace::workspace {

class QtTopLevelWindow final : public TopLevelWindow, public kelui::ui::QtWidgetHolder {
public:
    explicit QtTopLevelWindow(QWidget* window);
    ~QtTopLevelWindow() override;

    kelcore::string::string GetTitle() const override;
    std::shared_ptr<Workspace> GetWorkspace() const override;
    QWidget* GetQWidget() const override { return window.data(); }

private:
    QPointer<QWidget> window;
    std::shared_ptr<Workspace> workspace;
};

}  // namespace kelworkspace::workspace
