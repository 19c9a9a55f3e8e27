#include <vantrokelui/view/ProjectPickerView.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include <QWidget>

#include <kelui/ui/UI_WeakNodePtr.h>
#include <kelui/ui/WeakNodeFunction.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include "StatusViewSupport.h"

namespace vantrokelui::view {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {

constexpr float kPickerHeight = 315.0f;
constexpr float kSectionWidth = 310.0f;
constexpr float kSectionGap = 3.0f;
constexpr float kMargin = 15.0f;
constexpr float kLabelToPopupGap = 4.0f;

}  // namespace

ProjectPickerView::ProjectPickerView(
    const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel)
    : SelectionBaseView(viewModel ? viewModel->GetUser() : nullptr),
      accountsLabel(new kelui::controls::UI_StaticText),
      accountSelector(new AccountSelectorView(user)),
      projectsLabel(new kelui::controls::UI_StaticText),
      scrollView(new kelui::controls::UI_ScrollView),
      accountBindings(std::make_shared<utility::DataBindingTarget>()),
      currentViewID(viewModel) {
    accountsLabel->SetText(
        detail::Localized("$$$/Corvane/vantrokelui/view/ProjectPickerView/AccountsLabel=Accounts"));
    projectsLabel->SetText(
        detail::Localized("$$$/Corvane/vantrokelui/view/ProjectPickerView/ProjectsLabel=Projects"));
    accountsLabel->UI_Show(true);
    projectsLabel->UI_Show(true);
    scrollView->UI_Show(true);

    // Child order is the keyboard's order: the popup, then the rows.
    ChildPushBack(accountsLabel);
    ChildPushBack(accountSelector);
    ChildPushBack(projectsLabel);
    ChildPushBack(scrollView);

    if (user) {
        proposedAccountBinding = user->AddProposedAccountBinding(
            kelui::ui::WeakNodeFunction(this, &ProjectPickerView::OnProposedAccountChanged));
    }
    UI_Show(true);
}

ProjectPickerView::~ProjectPickerView() = default;

PointT<float> ProjectPickerView::UI_GetRecommendedSize(limner::Limner& /*measuring*/) {
    return {detail::kViewWidth, kPickerHeight};
}

void ProjectPickerView::UI_SizeChanged(const RectT<float>& rect) {
    SelectionBaseView::UI_SizeChanged(rect);
    Relayout();
}

std::vector<boost::intrusive_ptr<ProjectListItem>> ProjectPickerView::GetRows() const {
    std::vector<boost::intrusive_ptr<ProjectListItem>> rows;
    for (const auto& section : sections) {
        rows.insert(rows.end(), section->GetItems().begin(), section->GetItems().end());
    }
    return rows;
}

void ProjectPickerView::OnProposedAccountChanged(const std::shared_ptr<VantroAccount>& account) {
    // A new target drops the old account's subscriptions with the old target.
    accountBindings = std::make_shared<utility::DataBindingTarget>();
    if (!account) {
        RemoveSections();
        Relayout();
        return;
    }
    accountBindings->bindings.push_back(account->AddWorkspacesBinding(
        kelui::ui::WeakNodeFunction(this, &ProjectPickerView::OnWorkspacesChanged)));
}

void ProjectPickerView::OnWorkspacesChanged(
    const utility::SharedPtrVector<VantroWorkspace>& workspaces) {
    RemoveSections();
    const kelui::ui::UI_WeakNodePtr<ProjectPickerView> weakThis(this);
    const auto relayout = [weakThis] {
        if (const auto picker = weakThis.Lock()) {
            picker->Relayout();
        }
    };
    const auto moveFocus = [weakThis](ProjectListItem& row, int step) {
        if (const auto picker = weakThis.Lock()) {
            picker->MoveFocus(row, step);
        }
    };
    for (const auto& workspace : workspaces) {
        boost::intrusive_ptr<WorkspaceSectionView> section(
            new WorkspaceSectionView(workspace, user, currentViewID, relayout, moveFocus));
        scrollView->GetContentView()->ChildPushBack(section);
        sections.push_back(std::move(section));
    }
    Relayout();
}

void ProjectPickerView::RemoveSections() {
    const auto content = scrollView->GetContentView();
    for (const auto& section : sections) {
        content->ChildRemove(section);
    }
    sections.clear();
}

void ProjectPickerView::Relayout() {
    const RectT<float> rect = UI_GetLocalRectF();
    const float right = rect.x + rect.width - kMargin;

    float sy = 0.0f;
    for (const auto& section : sections) {
        const float height = sharedui::GetRecommendedSize(section).y;
        section->UI_SetLocalRectF({0.0f, sy, kSectionWidth, height});
        sy += height + kSectionGap;
    }
    const float contentHeight = sections.empty() ? 0.0f : sy - kSectionGap;

    const float lw = sharedui::GetRecommendedSize(accountsLabel).x;
    const float sh = sharedui::GetRecommendedSize(accountSelector).y;
    const PointT<float> projects = sharedui::GetRecommendedSize(projectsLabel);
    const float selectorX = kMargin + lw + kLabelToPopupGap;
    accountsLabel->UI_SetLocalRectF({kMargin, kMargin, lw, sh - 1.0f});
    accountSelector->UI_SetLocalRectF({selectorX, kMargin, right - selectorX, sh});
    projectsLabel->UI_SetLocalRectF({kMargin, sh + 30.0f, projects.x, projects.y});
    const float scrollTop = sh + 36.0f + projects.y;
    // As wide as `right` itself, so that the scroll bar sits at the view's edge.
    scrollView->UI_SetLocalRectF({kMargin, scrollTop, right, rect.y + rect.height - scrollTop});

    scrollView->SetContentRect({0.0f, 0.0f, kSectionWidth, contentHeight});
    scrollView->Update();
}

void ProjectPickerView::MoveFocus(ProjectListItem& row, int step) {
    const auto rows = GetRows();
    const auto at = std::find_if(rows.begin(), rows.end(),
                                 [&row](const auto& candidate) { return candidate.get() == &row; });
    if (at == rows.end()) {
        return;
    }
    const auto index = static_cast<std::ptrdiff_t>(at - rows.begin()) + step;
    if (index < 0 || index >= static_cast<std::ptrdiff_t>(rows.size())) {
        return;
    }
    const auto& target = rows[static_cast<std::size_t>(index)];
    target->GetWidget()->setFocus(Qt::TabFocusReason);

    // The row's place in the content: its section's top plus its own.
    const auto* section = target->UI_GetParentNode();
    const float top = section->UI_GetLocalRectF().y + target->UI_GetLocalRectF().y;
    const float bottom = top + target->UI_GetLocalRectF().height;
    const float position = scrollView->GetScrollPosition();
    const float viewport = scrollView->GetViewportSize().y;
    if (top < position) {
        scrollView->ScrollTo(top);
    } else if (bottom > position + viewport) {
        scrollView->ScrollTo(bottom - viewport);
    }
}

}  // namespace vantrokelui::view
