#include <vantrokelui/view/ShareForReviewScreenManagerImpl.h>

#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>
#include <vantrokelui/view/MakeScreenView.h>

namespace vantrokelui::view {

ShareForReviewScreenManagerImpl::ShareForReviewScreenManagerImpl(
    std::shared_ptr<viewmodel::ShareForReviewViewModel> model,
    std::shared_ptr<sharedui::WorkflowBase> host)
    : viewModel(std::move(model)), workflow(std::move(host)) {
    // The empty view only gives the section something to hold until the first screen.
    section = workflow->AddSection(
        0, boost::intrusive_ptr<kelui::ui::UI_SubView>(new kelui::ui::UI_SubView));
}

ShareForReviewScreenManagerImpl::~ShareForReviewScreenManagerImpl() {
    section.reset();
    workflow.reset();
    viewModel.reset();
    // The bindings go last, with DataBindingTarget.
}

void ShareForReviewScreenManagerImpl::BindViewModel() {
    const auto self = WeakAs<ShareForReviewScreenManagerImpl>();
    bindings.push_back(viewModel->AddCurrentViewIDBinding(utility::WeakBindMemberFunction(
        self, &ShareForReviewScreenManagerImpl::OnCurrentViewIDChanged)));
    bindings.push_back(
        viewModel->AddInvalidateParentForChildBinding(utility::WeakBindMemberFunction(
            self, &ShareForReviewScreenManagerImpl::OnInvalidateParentForChild)));
}

void ShareForReviewScreenManagerImpl::OnCurrentViewIDChanged(ShareForReviewViewID id) {
    if (id == ShareForReviewViewID::None) {
        workflow->HideWorkflow();
        return;
    }
    boost::intrusive_ptr<kelui::ui::UI_SubView> view = MakeScreenView(id, viewModel);
    section->SetContent(view);
    workflow->ShowWorkflow();
    // The earlier screen left the tree in SetContent and is gone; from here the section alone
    // holds the new one.
    view.reset();
    if (id == ShareForReviewViewID::SelectProject || id == ShareForReviewViewID::SelectFolder) {
        workflow->ShowSection(section);
    } else {
        workflow->ShowSection(nullptr);
    }
}

void ShareForReviewScreenManagerImpl::OnInvalidateParentForChild(bool /*toggled*/) {
    const auto size = sharedui::GetRecommendedSize(section);
    section->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
    workflow->UpdateLayout();
}

}  // namespace vantrokelui::view

namespace vantrokelui {

std::shared_ptr<view::ShareForReviewScreenManager> CreateShareForReviewScreenManager(
    const std::shared_ptr<viewmodel::ShareForReviewViewModel>& viewModel,
    const std::shared_ptr<sharedui::WorkflowBase>& workflow) {
    auto manager = std::make_shared<view::ShareForReviewScreenManagerImpl>(viewModel, workflow);
    manager->BindViewModel();
    workflow->AddCommitCallback(
        [weakModel = std::weak_ptr<viewmodel::ShareForReviewViewModel>(viewModel)] {
            if (const auto model = weakModel.lock()) {
                model->SetCurrentViewID(ShareForReviewViewID::None);
            }
        });
    return manager;
}

}  // namespace vantrokelui
