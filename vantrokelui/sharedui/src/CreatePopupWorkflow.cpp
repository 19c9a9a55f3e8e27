#include <vantrokelui/sharedui/CreatePopupWorkflow.h>

#include <vantrokelui/sharedui/DialogManager.h>
#include <vantrokelui/sharedui/PopupManager.h>

namespace vantrokelui {

std::shared_ptr<sharedui::WorkflowBase> CreatePopupWorkflow() {
    return std::make_shared<sharedui::PopupManager>();
}

std::shared_ptr<sharedui::WorkflowBase> sharedui::detail::CreateDialogWorkflow() {
    return std::make_shared<view::DialogManager>();
}

}  // namespace vantrokelui
