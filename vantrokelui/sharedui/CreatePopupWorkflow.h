// Making the workflow hosts. CreatePopupWorkflow is what a host calls once, before the first
// opening of the panel; the dialog form is made inside the library for the location dialog.
// Main thread.
//
//   auto workflow = vantrokelui::CreatePopupWorkflow();
//   workflow->SetAnchorNode(boost::intrusive_ptr<kelui::ui::UI_HostWidgetNode>(
//       new kelui::ui::UI_HostWidgetNode(shareButton)));
#pragma once

#include <memory>

#include <vantrokelui/sharedui/WorkflowBase.h>

namespace vantrokelui {

/// A popup workflow host (a PopupManager) with its main view shown; no popup exists until the
/// first ShowWorkflow.
std::shared_ptr<sharedui::WorkflowBase> CreatePopupWorkflow();

namespace sharedui::detail {
/// A dialog workflow host (a DialogManager); its main view is not shown yet.
std::shared_ptr<WorkflowBase> CreateDialogWorkflow();
}  // namespace sharedui::detail

}  // namespace vantrokelui
