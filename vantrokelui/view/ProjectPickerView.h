// The location picker's first step: an "Accounts" popup, and below a "Projects" title a
// scrolling list of the proposed account's projects, grouped by workspace. Choosing an account
// proposes it; choosing a project proposes its root folder and moves on to the folder step.
// Follows the user's ProposedAccount, and that account's Workspaces. Owned by the
// LocationPickerView; holds the view model's CurrentViewID only weakly. Main thread.
//
//   boost::intrusive_ptr<ProjectPickerView> projects(new ProjectPickerView(viewModel));
#pragma once

#include <memory>
#include <vector>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/controls/UI_ScrollView.h>
#include <kelui/controls/UI_StaticText.h>
#include <vantrokelui/utility/CurrentViewIDNotifyingProperty.h>
#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/utility/DataBindingTarget.h>
#include <vantrokelui/utility/NotifyingProperty.h>
#include <vantrokelui/view/AccountSelectorView.h>
#include <vantrokelui/view/ProjectListItem.h>
#include <vantrokelui/view/SelectionBaseView.h>
#include <vantrokelui/view/WorkspaceSectionView.h>

namespace vantrokelui {
class VantroAccount;
class VantroWorkspace;
}  // namespace vantrokelui

namespace vantrokelui::viewmodel {
class ShareForReviewViewModel;
}

namespace vantrokelui::view {

class ProjectPickerView final : public SelectionBaseView {
public:
    /// The step for the view model's present user. Binds to its ProposedAccount at once.
    explicit ProjectPickerView(const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel);
    ~ProjectPickerView() override;

    /// (340, 315): the room between the shell's two dividers.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    /// Lays out the labels, the popup, the scroll view and the sections for `rect`.
    void UI_SizeChanged(const kelcore::geom::RectT<float>& rect) override;

    // The parts, for tests and for screen readers' order.
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetAccountsLabel() const {
        return accountsLabel;
    }
    const boost::intrusive_ptr<AccountSelectorView>& GetAccountSelector() const {
        return accountSelector;
    }
    const std::vector<boost::intrusive_ptr<WorkspaceSectionView>>& GetSections() const {
        return sections;
    }
    const boost::intrusive_ptr<kelui::controls::UI_StaticText>& GetProjectsLabel() const {
        return projectsLabel;
    }
    const boost::intrusive_ptr<kelui::controls::UI_ScrollView>& GetScrollView() const {
        return scrollView;
    }
    /// Every project row, section by section, top to bottom.
    std::vector<boost::intrusive_ptr<ProjectListItem>> GetRows() const;

private:
    void OnProposedAccountChanged(const std::shared_ptr<VantroAccount>& account);
    void OnWorkspacesChanged(const utility::SharedPtrVector<VantroWorkspace>& workspaces);
    void RemoveSections();
    /// Computes the layout table for the present rectangle and applies it.
    void Relayout();
    /// Gives the keyboard to the row `step` rows from `row`, scrolled into view; stays put at
    /// either end.
    void MoveFocus(ProjectListItem& row, int step);

    boost::intrusive_ptr<kelui::controls::UI_StaticText> accountsLabel;
    boost::intrusive_ptr<AccountSelectorView> accountSelector;
    std::vector<boost::intrusive_ptr<WorkspaceSectionView>> sections;
    boost::intrusive_ptr<kelui::controls::UI_StaticText> projectsLabel;
    boost::intrusive_ptr<kelui::controls::UI_ScrollView> scrollView;
    // The subscriptions to the proposed account's lists: replaced with the account.
    std::shared_ptr<utility::DataBindingTarget> accountBindings;
    std::weak_ptr<CurrentViewIDNotifyingProperty> currentViewID;
    std::shared_ptr<utility::DataBinding> proposedAccountBinding;
};

}  // namespace vantrokelui::view
