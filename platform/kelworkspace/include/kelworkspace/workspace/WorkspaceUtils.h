// Lookups over the host's windows and workspaces. Stateless: the one registration is the
// toolkit's main window (kelui::ui::SetMainTopLevelWindow). Any thread.
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelworkspace/workspace/TopLevelWindow.h>

namespace kelui::ui {
class UI_Node;
}

namespace kelworkspace::workspace {

class WorkspaceUtils {
public:
    /// The registered main window when it lives and is a TopLevelWindow; null otherwise.
    static std::shared_ptr<TopLevelWindow> FindMainTopLevelWindow();
    /// The main window as a toolkit node, the parent of modal dialogs; null without a main
    /// window on Qt. Defined by the Qt side (kelworkspaceqt), main thread.
    static boost::intrusive_ptr<kelui::ui::UI_Node> GetModalDialogParentNode();
};

}  // namespace kelworkspace::workspace
