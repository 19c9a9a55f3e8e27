#include <vantrokelui/view/WorkspaceSectionView.h>

#include <utility>

#include <kelui/ui/WeakNodeFunction.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrokelui/sharedui/Measuring.h>

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {

constexpr float kSectionWidth = 310.0f;
constexpr float kRowIndent = 15.0f;
constexpr float kRowWidth = 295.0f;
constexpr float kRowHeight = 20.0f;
constexpr float kRowPitch = 25.0f;
constexpr float kGapBelowTitle = 5.0f;

}  // namespace

WorkspaceSectionView::WorkspaceSectionView(
    std::shared_ptr<VantroWorkspace> workspace_,
    std::weak_ptr<ProposedSelectionNotifyingProperty> proposed,
    std::weak_ptr<CurrentViewIDNotifyingProperty> viewID, std::function<void()> relayout_,
    ProjectListItem::MoveFocusFunction moveFocus_)
    : titleText(new kelui::controls::UI_StaticText),
      workspace(std::move(workspace_)),
      proposedSelection(std::move(proposed)),
      currentViewID(std::move(viewID)),
      relayout(std::move(relayout_)),
      moveFocus(std::move(moveFocus_)) {
    titleText->SetFontName("Tessaly Clean");
    titleText->SetText(workspace ? workspace->GetName() : kelcore::string::string());
    titleText->UI_Show(true);
    ChildPushBack(titleText);
    if (workspace) {
        projectsBinding = workspace->AddProjectsBinding(
            kelui::ui::WeakNodeFunction(this, &WorkspaceSectionView::OnProjectsChanged));
    }
    UI_Show(true);
}

WorkspaceSectionView::~WorkspaceSectionView() = default;

void WorkspaceSectionView::OnProjectsChanged(
    const utility::SharedPtrVector<VantroProject>& projects) {
    for (const auto& item : items) {
        ChildRemove(item);
    }
    items.clear();
    for (const auto& project : projects) {
        boost::intrusive_ptr<ProjectListItem> item(
            new ProjectListItem(project, proposedSelection, currentViewID));
        item->SetMoveFocusFunction(moveFocus);
        ChildPushBack(item);
        items.push_back(std::move(item));
    }
    if (relayout) {
        relayout();
    }
}

PointT<float> WorkspaceSectionView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    const float th = sharedui::GetRecommendedSize(titleText).y;
    return {kSectionWidth, th + kGapBelowTitle + kRowPitch * static_cast<float>(items.size())};
}

void WorkspaceSectionView::UI_SetLocalRectF(const RectT<float>& rect) {
    UI_ControlView::UI_SetLocalRectF(rect);
    const PointT<float> title = sharedui::GetRecommendedSize(titleText);
    titleText->UI_SetLocalRectF({0.0f, 0.0f, title.x, title.y});
    for (std::size_t n = 0; n < items.size(); ++n) {
        items[n]->UI_SetLocalRectF({kRowIndent,
                                    title.y + kGapBelowTitle + kRowPitch * static_cast<float>(n),
                                    kRowWidth, kRowHeight});
    }
}

}  // namespace vantrokelui::view
