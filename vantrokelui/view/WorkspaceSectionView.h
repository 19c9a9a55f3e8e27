// One workspace in the location picker's project step: the workspace's name as a title, and one
// ProjectListItem for each of its projects below it, in the list's order. Follows the
// workspace's Projects: each delivery replaces the rows and asks the picker to lay out again.
// Owned by the picker's scroll view; holds the workspace, and the properties the rows edit only
// weakly. Main thread.
//
//   boost::intrusive_ptr<WorkspaceSectionView> section(
//       new WorkspaceSectionView(workspace, user, viewModel, relayout, moveFocus));
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_ControlView.h>
#include <kelui/controls/UI_StaticText.h>
#include <vantrokelui/utility/CurrentViewIDNotifyingProperty.h>
#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/utility/NotifyingProperty.h>
#include <vantrokelui/utility/ProposedSelectionNotifyingProperty.h>
#include <vantrokelui/view/ProjectListItem.h>

namespace vantrokelui {
class VantroProject;
class VantroWorkspace;
}  // namespace vantrokelui

namespace vantrokelui::view {

class WorkspaceSectionView final : public kelui::controls::UI_ControlView {
public:
    /// A section for `workspace` whose rows edit `proposedSelection` and move `currentViewID`.
    /// `relayout` runs after each rebuild of the rows; `moveFocus` goes to every row. Binds to
    /// the workspace's projects at once (the rows come with the first delivery).
    WorkspaceSectionView(std::shared_ptr<VantroWorkspace> workspace,
                         std::weak_ptr<ProposedSelectionNotifyingProperty> proposedSelection,
                         std::weak_ptr<CurrentViewIDNotifyingProperty> currentViewID,
                         std::function<void()> relayout,
                         ProjectListItem::MoveFocusFunction moveFocus);
    ~WorkspaceSectionView() override;

    /// (310, title height + 5 + 25 per row).
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    /// Keeps `rect`, then puts the title at the top left and the rows 25 apart below it.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;

    const std::shared_ptr<VantroWorkspace>& GetWorkspace() const { return workspace; }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetTitleText() const {
        return titleText;
    }
    const std::vector<boost::intrusive_ptr<ProjectListItem>>& GetItems() const { return items; }

private:
    void OnProjectsChanged(const utility::SharedPtrVector<VantroProject>& projects);

    boost::intrusive_ptr<kelui::controls::UI_StaticText> titleText;
    std::vector<boost::intrusive_ptr<ProjectListItem>> items;
    std::shared_ptr<VantroWorkspace> workspace;
    std::weak_ptr<ProposedSelectionNotifyingProperty> proposedSelection;
    std::weak_ptr<CurrentViewIDNotifyingProperty> currentViewID;
    std::function<void()> relayout;
    ProjectListItem::MoveFocusFunction moveFocus;
    std::shared_ptr<utility::DataBinding> projectsBinding;
};

}  // namespace vantrokelui::view
