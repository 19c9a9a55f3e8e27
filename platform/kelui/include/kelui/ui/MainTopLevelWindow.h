// Where the toolkit finds the host's main top-level window: the parent of toasts and of modal
// dialogs. The host registers its window once it exists; the toolkit keeps it weakly, so a
// closed window reads as none. Without a registration there is no main window, which is what a
// headless host has. Any thread.
//
//   kelui::ui::SetMainTopLevelWindow(mainWindow);          // the host, at start
//   if (auto window = kelui::ui::GetMainTopLevelWindow()) ...
#pragma once

#include <memory>

#include <kelui/ui/UI_Window.h>

namespace kelui::ui {

/// The registered main window while it lives; null otherwise. Any thread.
std::shared_ptr<UI_Window> GetMainTopLevelWindow();

/// Registers `window` as the main window (held weakly), replacing the one before; an empty
/// pointer unregisters. Any thread.
void SetMainTopLevelWindow(std::weak_ptr<UI_Window> window);

}  // namespace kelui::ui
