#include <vantrokelui/view/LocationPickerView.h>

#include <utility>

#include <kelui/ui/WeakNodeFunction.h>
#include <vantrokelui/nodes/NodeFunctions.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/sharedui/Measuring.h>

#include "StatusViewSupport.h"

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {

constexpr float kViewHeight = 392.0f;
constexpr float kStepTop = 27.0f;
constexpr float kButtonHeight = 20.0f;
constexpr float kButtonGap = 10.0f;

}  // namespace

LocationPickerView::LocationPickerView(std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : PopupBaseView(std::move(model)),
      headerText(new kelui::controls::UI_StaticText),
      projectPicker(new ProjectPickerView(viewModel)),
      folderPicker(FolderPickerView::Create(viewModel)),
      topDivider(new kelui::controls::UI_Divider),
      bottomDivider(new kelui::controls::UI_Divider),
      cancelButton(new kelui::controls::UI_TextButton),
      chooseButton(new sharedui::CallToActionButton) {
    // Chosen once: the header stays while the user moves between the two steps.
    headerText->SetText(detail::Localized(
        viewModel->GetCurrentViewID() == ShareForReviewViewID::SelectFolder
            ? "$$$/Corvane/vantrokelui/view/FolderPicker/Header=Select a folder in the project"
            : "$$$/Corvane/vantrokelui/view/ProjectPicker/Header=Select an account and project "
              "on Vantro"));
    headerText->SetTextAlignment(limner::TextAlignment::Left);
    headerText->SetFontStyleName("Bold");
    headerText->UI_Show(true);
    topDivider->UI_Show(true);
    bottomDivider->UI_Show(true);

    cancelButton->SetText(
        detail::Localized("$$$/Corvane/vantrokelui/view/LocationPicker/CancelBtn=Cancel"));
    cancelButton->SetFontStyleName("Bold");
    cancelButton->UI_SetNodeID("LocationPickerCancel");
    cancelButton->SetDisabled(false);
    cancelButton->NotifyWhenChanged(
        kelui::ui::WeakNodeFunction(this, &LocationPickerView::Cancel));
    cancelButton->UI_Show(true);

    chooseButton->SetText(
        detail::Localized("$$$/Corvane/vantrokelui/view/LocationPicker/ChooseBtn=Choose"));
    chooseButton->SetFontStyleName("Bold");
    chooseButton->UI_SetNodeID("LocationPickerCommit");
    chooseButton->SetDisabled(true);
    chooseButton->NotifyWhenChanged(
        kelui::ui::WeakNodeFunction(this, &LocationPickerView::Choose));
    chooseButton->UI_Show(true);

    if (folderPicker) {
        folderPicker->SetChooseFunction(
            kelui::ui::WeakNodeFunction(this, &LocationPickerView::Choose));
    }

    // Child order is the keyboard's order: the step first, then Cancel and Choose.
    ChildPushBack(headerText);
    ChildPushBack(topDivider);
    ChildPushBack(projectPicker);
    if (folderPicker) {
        ChildPushBack(folderPicker);
    }
    ChildPushBack(bottomDivider);
    ChildPushBack(cancelButton);
    ChildPushBack(chooseButton);

    // Neither step shows before the first delivery says which one it is.
    projectPicker->UI_Show(false);
    if (folderPicker) {
        folderPicker->UI_Show(false);
    }
    bindings.push_back(viewModel->AddCurrentViewIDBinding(
        kelui::ui::WeakNodeFunction(this, &LocationPickerView::OnCurrentViewIDChanged)));
    if (const auto& user = viewModel->GetUser()) {
        bindings.push_back(user->AddProposedSelectionBinding(
            kelui::ui::WeakNodeFunction(this, &LocationPickerView::OnProposedSelectionChanged)));
    }
    UI_Show(true);
}

LocationPickerView::~LocationPickerView() = default;

PointT<float> LocationPickerView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {detail::kViewWidth, kViewHeight};
}

void LocationPickerView::UI_SetLocalRectF(const RectT<float>& rect) {
    PopupBaseView::UI_SetLocalRectF(rect);
    const float w = rect.width;
    const float h = rect.height;
    headerText->UI_SetLocalRectF({detail::kColumnLeft, 6.0f, w - 30.0f, 15.0f});
    topDivider->UI_SetLocalRectF({0.0f, kStepTop, detail::kViewWidth, 1.0f});
    const PointT<float> projects = sharedui::GetRecommendedSize(projectPicker);
    projectPicker->UI_SetLocalRectF({0.0f, kStepTop, projects.x, projects.y});
    if (folderPicker) {
        const PointT<float> folders = sharedui::GetRecommendedSize(folderPicker);
        folderPicker->UI_SetLocalRectF({0.0f, kStepTop, folders.x, folders.y});
    }
    bottomDivider->UI_SetLocalRectF({0.0f, h - 50.0f, detail::kViewWidth, 1.0f});
    const float cw = sharedui::GetRecommendedSize(cancelButton).x;
    const float hw = sharedui::GetRecommendedSize(chooseButton).x;
    cancelButton->UI_SetLocalRectF(
        {w - cw - kButtonGap - hw - detail::kBottomMargin, h - 35.0f, cw, kButtonHeight});
    chooseButton->UI_SetLocalRectF(
        {w - detail::kBottomMargin - hw, h - 35.0f, hw, kButtonHeight});
}

void LocationPickerView::Cancel() {
    SynchroniseProposal();
    viewModel->LocationPickerCancelled();
}

void LocationPickerView::Choose() {
    const boost::intrusive_ptr<SelectionBaseView> step =
        (projectPicker->UI_IsShown() || !folderPicker)
            ? boost::intrusive_ptr<SelectionBaseView>(projectPicker)
            : boost::intrusive_ptr<SelectionBaseView>(folderPicker);
    step->CommitSelection();
    SynchroniseProposal();
    viewModel->LocationPickerSelectionCommitted();
}

void LocationPickerView::OnCurrentViewIDChanged(ShareForReviewViewID id) {
    projectPicker->UI_Show(id == ShareForReviewViewID::SelectProject);
    if (folderPicker) {
        folderPicker->UI_Show(id == ShareForReviewViewID::SelectFolder);
    }
}

void LocationPickerView::OnProposedSelectionChanged(const std::shared_ptr<VantroFolder>& folder) {
    chooseButton->UI_SetEnabled(folder != nullptr);
}

void LocationPickerView::SynchroniseProposal() {
    const std::shared_ptr<VantroUser> user = viewModel->GetUser();
    if (!user) {
        return;
    }
    const std::shared_ptr<VantroFolder> selection = user->GetSelection();
    user->SetProposedSelection(selection);
    user->SetProposedAccount(selection ? GetAccount(selection) : nullptr);
}

}  // namespace vantrokelui::view
