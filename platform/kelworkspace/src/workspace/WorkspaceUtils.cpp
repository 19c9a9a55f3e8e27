#include <kelworkspace/workspace/WorkspaceUtils.h>

#include <kelui/ui/MainTopLevelWindow.h>

namespace kelworkspace::workspace {

std::shared_ptr<TopLevelWindow> WorkspaceUtils::FindMainTopLevelWindow() {
    return std::dynamic_pointer_cast<TopLevelWindow>(kelui::ui::GetMainTopLevelWindow());
}

}  // namespace kelworkspace::workspace
