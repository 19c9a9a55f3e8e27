#include <vantrokelui/sharedui/DialogManager.h>

#include <kelcore/config/ErrorHandling.h>
#include <kelui/controls/OS_ViewContainer.h>
#include <kelworkspace/workspace/WorkspaceUtils.h>
#include <vantrokelui/sharedui/Measuring.h>

#include "SectionFunctions.h"

namespace vantrokelui::view {

namespace {

/// The root node of the window that modal dialogs belong to; null without one.
boost::intrusive_ptr<kelui::ui::UI_Node> FindDialogRoot() {
    auto parent = kelworkspace::workspace::WorkspaceUtils::GetModalDialogParentNode();
    return parent ? parent->UI_GetRootNode() : nullptr;
}

}  // namespace

DialogManager::DialogManager() : mainView(new sharedui::WorkflowMainView) {}

DialogManager::~DialogManager() {
    if (dialog) {
        dialog->DefaultCloseCancel();
        if (auto* container = dialog->GetViewContainer()) {
            container->ChildRequestRemove(mainView);
        }
    }
    commitButton.reset();
    cancelButton.reset();
    dialog.reset();
    mainView.reset();
}

void DialogManager::SetPopupPosition(kelcore::geom::PointT<float> /*position*/) {}

boost::intrusive_ptr<sharedui::WorkflowSectionView> DialogManager::AddSection(
    std::size_t index, boost::intrusive_ptr<kelui::ui::UI_SubView> view) {
    const auto rect = view ? view->UI_GetLocalRectF() : kelcore::geom::RectT<float>{};
    boost::intrusive_ptr<sharedui::WorkflowSectionView> section(
        new sharedui::WorkflowSectionView(std::move(view), {}, nullptr));
    section->UI_Show(rect.width > 0.0f || rect.height > 0.0f);
    sharedui::detail::InsertSection(*mainView, section, index);
    UpdateLayout();
    return section;
}

void DialogManager::ShowSection(boost::intrusive_ptr<sharedui::WorkflowSectionView> section) {
    sharedui::detail::ShowOnlySection(*mainView, section);
    UpdateLayout();
}

void DialogManager::ShowWorkflow() {
    const auto root = FindDialogRoot();
    auto supplier = root ? root->UI_GetDrawSupplier() : nullptr;
    dialog.reset(
        new kelui::ui::UI_Dialog(supplier, {}, {0.0f, 0.0f}, root ? root->GetWidget() : nullptr));
    dialog->GetViewContainer()->ChildPushBack(mainView);
    UpdateLayout();
    if (cancelButton && commitButton) {
        dialog->SetButtons(cancelButton, commitButton);
    }
    mainView->UI_Show(true);
    dialog->RunModal();
}

void DialogManager::AddCommitCallback(std::function<void()> /*callback*/) {}

void DialogManager::HideWorkflow() {
    if (dialog) {
        dialog->UI_Hide(true);
    }
}

void DialogManager::SetDialogButtons(boost::intrusive_ptr<kelui::ui::UI_Node> view,
                                     const std::string& cancelNodeID,
                                     const std::string& commitNodeID) {
    if (!view) {
        return;
    }
    const auto cancelNode = view->UI_ChildGetFromID(cancelNodeID);
    const auto commitNode = view->UI_ChildGetFromID(commitNodeID);
    if (!cancelNode || !commitNode) {
        return;
    }
    auto cancel = kelui::ui::NodeCast<kelui::controls::UI_Button>(cancelNode);
    auto commit = kelui::ui::NodeCast<kelui::controls::UI_Button>(commitNode);
    if (!cancel || !commit) {
        kelcore::config::ThrowError(
            "$$$/kelcore/utility/Error/InvalidTypeConversion=Invalid type conversion.");
    }
    cancelButton = std::move(cancel);
    commitButton = std::move(commit);
}

void DialogManager::SetAnchorNode(boost::intrusive_ptr<kelui::ui::UI_Node> /*node*/) {}

void DialogManager::UpdateLayout() {
    const auto root = FindDialogRoot();
    if (!dialog || !root) {
        return;
    }
    const auto size = sharedui::GetRecommendedSize(mainView);
    mainView->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
    dialog->UI_SetLocalRect({0, 0, static_cast<int>(size.x), static_cast<int>(size.y)});
    dialog->Position();
    dialog->SetContentSize(size.x, size.y);
    dialog->UI_Activate();
}

}  // namespace vantrokelui::view
