#include <vantrokelui/sharedui/WorkflowMainView.h>

#include <kelui/skins/Theme.h>
#include <kelui/ui/UI_NodeManager.h>

namespace vantrokelui::sharedui {

WorkflowMainView::WorkflowMainView() {
    UI_SetNodeID("WorkflowMainView");
    SetMargin(1.0f);
    SetSpacing(1.0f);
}

void WorkflowMainView::UI_Draw(limner::Limner& limner) {
    UI_Node::UI_Draw(limner);
    const auto supplier = UI_GetDrawSupplierOrDefault();
    limner::Path path = supplier->CreatePath();
    for (const auto& child : GetChildren()) {
        const auto rect = child->UI_GetLocalRectF();
        if (child->UI_IsViewVisible() && rect.width > 0.0f && rect.height > 0.0f) {
            path.AddRect({rect.x - 0.5f, rect.y - 0.5f, rect.width + 1.0f, rect.height + 1.0f});
        }
    }
    const int gray = kelui::skins::IsRunningV7OrBeyond() ? 4 : 5;
    limner.StrokePath(
        path, limner::Pen{1.0f, kelui::skins::GetPaletteGrayColor(supplier->GetTheme(), gray)});
}

}  // namespace vantrokelui::sharedui
