// A top-level window that holds a workspace: the host's main window is one. The host (or the
// toolkit's Qt side) derives from it and registers it with kelui::ui::SetMainTopLevelWindow,
// which is how WorkspaceUtils finds it. Any thread may hold one.
#pragma once

#include <memory>

#include <kelui/ui/UI_Window.h>
#include <kelworkspace/workspace/Workspace.h>

namespace kelworkspace::workspace {

class TopLevelWindow : public kelui::ui::UI_Window {
public:
    ~TopLevelWindow() override;

    /// The window's workspace; null when it has none (yet). Any thread.
    virtual std::shared_ptr<Workspace> GetWorkspace() const = 0;
};

}  // namespace kelworkspace::workspace
