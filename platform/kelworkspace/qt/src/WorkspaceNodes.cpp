// The Qt side of WorkspaceUtils: the main window as a node of the toolkit.
#include <kelworkspace/workspace/WorkspaceUtils.h>

#include <kelui/limner/WidgetDrawingSupplier.h>
#include <kelui/ui/UI_HostWidgetNode.h>
#include <kelworkspace/workspace/QtTopLevelWindow.h>

namespace kelworkspace::workspace {

boost::intrusive_ptr<kelui::ui::UI_Node> WorkspaceUtils::GetModalDialogParentNode() {
    const auto mainWindow = FindMainTopLevelWindow();
    auto* holder = dynamic_cast<kelui::ui::QtWidgetHolder*>(mainWindow.get());
    QWidget* widget = holder ? holder->GetQWidget() : nullptr;
    if (!widget) {
        return nullptr;
    }
    boost::intrusive_ptr<kelui::ui::UI_HostWidgetNode> node(
        new kelui::ui::UI_HostWidgetNode(widget->window()));
    if (const auto workspace = mainWindow->GetWorkspace()) {
        node->UI_SetDrawSupplier(std::dynamic_pointer_cast<limner::WidgetDrawingSupplier>(
            workspace->GetDrawingSupplier()));
    }
    return node;
}

}  // namespace kelworkspace::workspace
