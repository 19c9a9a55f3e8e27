// The window that the panel's views live in, as the host and the screen manager see it. Two
// forms exist: a popup that hangs from a node of the host's header (CreatePopupWorkflow) and a
// modal dialog (behind ShowSelectLocationDialogCentered). Both hold a vertical stack of sections,
// each wrapping one view. Owned by shared pointer by the host and the screen manager; main
// thread.
//
//   auto workflow = vantrokelui::CreatePopupWorkflow();
//   workflow->SetAnchorNode(shareButtonNode);
//   auto screens = vantrokelui::CreateShareForReviewScreenManager(viewModel, workflow);
#pragma once

#include <functional>
#include <string>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelui/ui/UI_Node.h>
#include <kelui/ui/UI_SubView.h>
#include <vantrokelui/sharedui/WorkflowSectionView.h>

namespace vantrokelui::sharedui {

class WorkflowBase {
public:
    WorkflowBase() = default;
    WorkflowBase(const WorkflowBase&) = default;
    WorkflowBase(WorkflowBase&&) = default;
    WorkflowBase& operator=(const WorkflowBase&) = default;
    WorkflowBase& operator=(WorkflowBase&&) = default;

    /// Where the top left goes when the host places the window at a position.
    virtual void SetPopupPosition(kelcore::geom::PointT<float> position) = 0;
    /// Wraps `view` in a new section at `index` (past the end appends) and lays out again.
    virtual boost::intrusive_ptr<WorkflowSectionView> AddSection(
        std::size_t index, boost::intrusive_ptr<kelui::ui::UI_SubView> view) = 0;
    /// Shows `section` alone, or every section when it is null, and lays out again.
    virtual void ShowSection(boost::intrusive_ptr<WorkflowSectionView> section) = 0;
    /// Puts the window on screen.
    virtual void ShowWorkflow() = 0;
    /// Adds a function that runs when the user dismisses the window.
    virtual void AddCommitCallback(std::function<void()> callback) = 0;
    /// Takes the window off screen; it is kept for the next show.
    virtual void HideWorkflow() = 0;
    /// Names the nodes inside `view` that cancel and commit the window.
    virtual void SetDialogButtons(boost::intrusive_ptr<kelui::ui::UI_Node> view,
                                  const std::string& cancelNodeID,
                                  const std::string& commitNodeID) = 0;
    /// The node the window hangs from; null clears it.
    virtual void SetAnchorNode(boost::intrusive_ptr<kelui::ui::UI_Node> node) = 0;
    /// Sizes the stack and places the window again.
    virtual void UpdateLayout() = 0;
    virtual ~WorkflowBase() = default;
};

}  // namespace vantrokelui::sharedui
