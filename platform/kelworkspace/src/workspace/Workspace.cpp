#include <kelworkspace/workspace/Workspace.h>

namespace kelworkspace::workspace {

Workspace::~Workspace() = default;

}  // namespace kelworkspace::workspace
