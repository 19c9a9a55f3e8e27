#include <vantrokelui/sharedui/PopupManager.h>

#include <kelui/controls/OS_ViewContainer.h>
#include <vantrokelui/sharedui/Measuring.h>

#include "SectionFunctions.h"

namespace vantrokelui::sharedui {

PopupManager::PopupManager() : mainView(new WorkflowMainView) {
    mainView->UI_Show(true);
}

PopupManager::~PopupManager() {
    commitCallbacks.clear();
    popupContainer.reset();
    mainView.reset();
}

void PopupManager::SetPopupPosition(kelcore::geom::PointT<float> position) {
    popupPosition = position;
}

boost::intrusive_ptr<WorkflowSectionView> PopupManager::AddSection(
    std::size_t index, boost::intrusive_ptr<kelui::ui::UI_SubView> view) {
    boost::intrusive_ptr<WorkflowSectionView> section(
        new WorkflowSectionView(std::move(view), {}, nullptr));
    section->UI_Show(true);
    detail::InsertSection(*mainView, section, index);
    UpdateLayout();
    return section;
}

void PopupManager::ShowSection(boost::intrusive_ptr<WorkflowSectionView> section) {
    detail::ShowOnlySection(*mainView, section);
    UpdateLayout();
}

void PopupManager::ShowWorkflow() {
    const auto anchor = anchorNode.Lock();
    if (!anchor) {
        return;
    }
    if (!popupContainer) {
        popupContainer.reset(new kelui::controls::UI_TouchPopupContainer(
            anchor->UI_GetDrawSupplier(), anchor, false, true, false, 2, true));
        popupContainer->GetContainer()->ChildPushBack(mainView);
    }
    if (popupContainer) {
        // A copy of the list as it is now: a later AddCommitCallback counts from the next show.
        popupContainer->InstallNotifyOnCommit([callbacks = commitCallbacks] {
            for (const auto& callback : callbacks) {
                (*callback)();  // an empty function throws std::bad_function_call, by design
            }
        });
    }
    popupContainer->StartPopup();
    UpdateLayout();
}

void PopupManager::AddCommitCallback(std::function<void()> callback) {
    commitCallbacks.push_back(std::make_shared<std::function<void()>>(std::move(callback)));
}

void PopupManager::HideWorkflow() {
    if (popupContainer) {
        popupContainer->UI_Hide(true);
    }
}

void PopupManager::SetDialogButtons(boost::intrusive_ptr<kelui::ui::UI_Node> /*view*/,
                                    const std::string& /*cancelNodeID*/,
                                    const std::string& /*commitNodeID*/) {}

void PopupManager::SetAnchorNode(boost::intrusive_ptr<kelui::ui::UI_Node> node) {
    anchorNode = kelui::ui::UI_WeakNodePtr<kelui::ui::UI_Node>(node);
}

void PopupManager::UpdateLayout() {
    const auto anchor = anchorNode.Lock();
    if (!anchor || !popupContainer) {
        return;
    }
    const auto size = GetRecommendedSize(mainView);
    mainView->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});

    float scaleX = 1.0f;
    float scaleY = 1.0f;
    if (auto* container = popupContainer->GetContainer()) {
        const auto factors = container->GetScaleFactors();
        scaleX = factors[2];
        scaleY = factors[3];
    }
    const auto anchorRect = anchor->UI_LocalToGlobalF(anchor->UI_GetLocalRectF());
    const float width = scaleX * size.x;
    const float height = scaleY * size.y;
    kelcore::geom::PointT<float> topLeft{};
    switch (placementMode) {
        case BelowAnchor:
            topLeft = {anchorRect.x + anchorRect.width - width,
                       anchorRect.y + 4.0f + anchorRect.height};
            break;
        case CenteredOnAnchor:
            topLeft = {anchorRect.x + (anchorRect.width - width) * 0.5f,
                       anchorRect.y + (anchorRect.height - height) * 0.5f};
            break;
        case AtPosition:
            topLeft = popupPosition;
            break;
        default:
            break;
    }
    popupContainer->SetContentSize(topLeft.x, topLeft.y, width, height);
    popupContainer->UI_Activate();
}

}  // namespace vantrokelui::sharedui
