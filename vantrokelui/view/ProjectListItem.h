// One project row of the location picker's project step: the project icon, the project's name and
// a chevron. A press (or Enter/Space while the row has the keyboard) proposes the project's root
// folder, unless the proposal is already in this project, and moves on to the folder step. The
// row holding the proposal, and the row under the pointer, are drawn highlighted. Owned by its
// WorkspaceSectionView; holds the user's proposal and the panel's view only weakly. Main thread.
//
//   boost::intrusive_ptr<ProjectListItem> row(new ProjectListItem(project, user, viewModel));
//   section->ChildPushBack(row);
#pragma once

#include <functional>
#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_ControlView.h>
#include <kelui/controls/UI_StaticImage.h>
#include <kelui/controls/UI_StaticText.h>
#include <vantrokelui/utility/CurrentViewIDNotifyingProperty.h>
#include <vantrokelui/utility/DataBindingTarget.h>
#include <vantrokelui/utility/ProposedSelectionNotifyingProperty.h>

namespace vantrokelui {
class VantroFolder;
class VantroProject;
}  // namespace vantrokelui

namespace vantrokelui::view {

class ProjectListItem final : public kelui::controls::UI_ControlView,
                              public utility::DataBindingTarget {
public:
    /// What the row asks its owner to do for an arrow key: move the keyboard `step` rows on
    /// (-1 up, +1 down) from `row`.
    using MoveFocusFunction = std::function<void(ProjectListItem& row, int step)>;

    /// A row for `project` that edits `proposedSelection` and moves `currentViewID`; either may
    /// be empty, and a press then does nothing. Binds to the proposal at once.
    ProjectListItem(std::shared_ptr<VantroProject> project,
                    std::weak_ptr<ProposedSelectionNotifyingProperty> proposedSelection,
                    std::weak_ptr<CurrentViewIDNotifyingProperty> currentViewID);
    ~ProjectListItem() override;

    /// Always (295, 20).
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    /// Keeps `rect`, then places the icon, the name and the chevron for the toolkit's skin.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;
    /// Hover on enter/leave; a primary press activates the row. Always returns false, so the
    /// event goes on.
    bool UI_DoPointerEvent(const kelui::ui::PointerEvent& event) override;
    /// The rounded highlight when hovered, current or focused.
    void UI_Draw(limner::Limner& limner) override;

    /// What a press does: unless this row's project holds the proposal, proposes the project's
    /// root folder (null when it has not arrived); then moves to the folder step. Does nothing
    /// when either property has gone.
    void Activate();
    /// Installs what the arrow keys do; empty (the default) lets them go on.
    void SetMoveFocusFunction(MoveFocusFunction function) { moveFocus = std::move(function); }

    const std::shared_ptr<VantroProject>& GetProject() const { return project; }
    bool IsHovered() const { return hovered; }
    bool IsCurrentProject() const { return isCurrentProject; }

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<kelui::controls::UI_StaticImage>& GetProjectIcon() const {
        return projectIcon;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetNameText() const {
        return nameText;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticImage>& GetChevronImage() const {
        return chevronImage;
    }

private:
    class KeyFilter;

    void OnProposedSelectionChanged(const std::shared_ptr<VantroFolder>& folder);
    void SetHovered(bool hover);
    bool OnKey(int key);

    boost::intrusive_ptr<kelui::controls::UI_StaticImage> projectIcon;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> nameText;
    boost::intrusive_ptr<kelui::controls::UI_StaticImage> chevronImage;
    std::shared_ptr<VantroProject> project;
    std::weak_ptr<ProposedSelectionNotifyingProperty> proposedSelection;
    std::weak_ptr<CurrentViewIDNotifyingProperty> currentViewID;
    bool hovered = false;
    bool isCurrentProject = false;
    MoveFocusFunction moveFocus;
};

}  // namespace vantrokelui::view
