#include <vantrokelui/sharedui/ShowSelectLocationDialogCentered.h>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/utility/RefCountedObjectWithWeakPtr.h>
#include <vantrokelui/model/client/UserFunctions.h>
#include <vantrokelui/sharedui/CreatePopupWorkflow.h>
#include <vantrokelui/view/MakeScreenView.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

namespace vantrokelui::sharedui {

namespace {

class SelectLocationManagerImpl final : public kelcore::utility::RefCountedObjectWithWeakPtr {
public:
    SelectLocationManagerImpl()
        : viewModel(viewmodel::ShareForReviewViewModel::Create()),
          workflow(detail::CreateDialogWorkflow()) {}

    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
    std::shared_ptr<WorkflowBase> workflow;
};

boost::intrusive_ptr<SelectLocationManagerImpl> sHolder;

std::function<void(const std::shared_ptr<WorkflowBase>&)>& Presenter() {
    static std::function<void(const std::shared_ptr<WorkflowBase>&)> presenter;
    return presenter;
}

}  // namespace

void SetSelectLocationDialogPresenter(
    std::function<void(const std::shared_ptr<WorkflowBase>&)> presenter) {
    Presenter() = std::move(presenter);
}

void ShowSelectLocationDialogCentered(
    kelcore::classref::InterfaceRef<vantro::VantroUser> user,
    std::function<void(const kelcore::utility::Guid&, const kelcore::string::string&)> callback) {
    if (!sHolder) {
        sHolder.reset(new SelectLocationManagerImpl);
    }
    const boost::intrusive_ptr<SelectLocationManagerImpl> holder = sHolder;

    holder->viewModel->SelectLocationAPI(model::VantroClientIntegration::CreateClientUser(user),
                                         std::move(callback));
    boost::intrusive_ptr<kelui::ui::UI_SubView> view =
        view::MakeScreenView(holder->viewModel->GetCurrentViewID(), holder->viewModel);
    auto section = holder->workflow->AddSection(0, view);
    holder->workflow->ShowSection(section);
    holder->workflow->SetDialogButtons(view, "LocationPickerCancel", "LocationPickerCommit");
    if (const auto presenter = Presenter()) {
        presenter(holder->workflow);
    }

    sHolder.reset();
}

}  // namespace vantrokelui::sharedui
