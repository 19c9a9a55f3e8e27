#include <vantrokelui/sharedui/WorkflowSectionView.h>

#include <kelui/skins/Theme.h>
#include <kelui/ui/UI_NodeManager.h>
#include <vantrokelui/sharedui/Measuring.h>

namespace vantrokelui::sharedui {

WorkflowSectionView::WorkflowSectionView(
    boost::intrusive_ptr<kelui::ui::UI_SubView> view, const kelcore::string::string& /*title*/,
    const std::shared_ptr<std::function<void(kelui::ui::ConstMessage*)>>& /*image*/)
    : content(std::move(view)) {
    UI_SetNodeID("ShareSectionViewImpl");
    SetSpacing(1.0f);
    if (content) {
        content->UI_Show(true);
        ChildPushBack(content);
    }
}

void WorkflowSectionView::UI_Draw(limner::Limner& limner) {
    const auto supplier = UI_GetDrawSupplierOrDefault();
    const auto rect = UI_GetLocalRectF();
    limner.FillRect({0.0f, 0.0f, rect.width, rect.height},
                    kelui::skins::GetPaletteGrayColor(supplier->GetTheme(), 1));
    UI_Node::UI_Draw(limner);
}

boost::intrusive_ptr<kelui::ui::UI_SubView> WorkflowSectionView::GetContent() {
    return content;
}

void WorkflowSectionView::SetContent(boost::intrusive_ptr<kelui::ui::UI_SubView> view) {
    ChildRemove(content);
    if (!view) {
        view = boost::intrusive_ptr<kelui::ui::UI_SubView>(new kelui::ui::UI_SubView);
    }
    content = std::move(view);
    content->UI_Show(true);
    ChildPushBack(content);
    const auto size = GetRecommendedSize(boost::intrusive_ptr<kelui::ui::UI_Node>(this));
    UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
}

}  // namespace vantrokelui::sharedui
