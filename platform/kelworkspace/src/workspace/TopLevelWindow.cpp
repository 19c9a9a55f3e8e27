#include <kelworkspace/workspace/TopLevelWindow.h>

namespace kelworkspace::workspace {

TopLevelWindow::~TopLevelWindow() = default;

}  // namespace kelworkspace::workspace
