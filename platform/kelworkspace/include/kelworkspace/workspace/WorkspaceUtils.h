// Lookups over the host's windows and workspaces. Stateless: the one registration is the
// toolkit's main window (kelui::ui::SetMainTopLevelWindow). Any thread.
#pragma once

#include <memory>

#include <kelworkspace/workspace/TopLevelWindow.h>

namespace kelworkspace::workspace {

class WorkspaceUtils {
public:
    /// The registered main window when it lives and is a TopLevelWindow; null otherwise.
    static std::shared_ptr<TopLevelWindow> FindMainTopLevelWindow();
};

}  // namespace kelworkspace::workspace
