// The location picker as a dialog of its own, for parts of the host other than the panel: it
// shows the chosen account's projects and folders, and hands the chosen folder to `callback`.
//
// The library assembles the dialog but does not raise it: a host that wants it on screen
// registers a function with SetSelectLocationDialogPresenter, which receives the assembled
// dialog host before the call returns and may call ShowWorkflow on it (which runs modally).
// Main thread.
//
//   vantrokelui::sharedui::SetSelectLocationDialogPresenter(
//       [](const std::shared_ptr<WorkflowBase>& dialog) { dialog->ShowWorkflow(); });
//   vantrokelui::sharedui::ShowSelectLocationDialogCentered(user, [](const Guid& folder,
//                                                                    const string& path) { ... });
#pragma once

#include <functional>
#include <memory>

#include <kelcore/classref/InterfaceRef.h>
#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <vantroclient/VantroUser.h>
#include <vantrokelui/sharedui/WorkflowBase.h>

namespace vantrokelui::sharedui {

/// Assembles the picker for `user` in a dialog host; `callback` gets the committed folder.
void ShowSelectLocationDialogCentered(
    kelcore::classref::InterfaceRef<vantro::VantroUser> user,
    std::function<void(const kelcore::utility::Guid&, const kelcore::string::string&)> callback);

/// What a host does with the assembled dialog host: called once per
/// ShowSelectLocationDialogCentered, after the dialog's buttons are named and before the call
/// returns. Empty (the default) leaves the dialog unshown. Main thread.
void SetSelectLocationDialogPresenter(
    std::function<void(const std::shared_ptr<WorkflowBase>&)> presenter);

}  // namespace vantrokelui::sharedui
