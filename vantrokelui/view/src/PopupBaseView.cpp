#include <vantrokelui/view/PopupBaseView.h>

#include <kelui/controls/UI_TouchPopupContainer.h>
#include <kelui/ui/UI_WeakNodePtr.h>
#include <vantrokelui/utility/SDMLogging.h>

namespace vantrokelui::view {

PopupBaseView::PopupBaseView(std::shared_ptr<viewmodel::ShareForReviewViewModel> model)
    : viewModel(std::move(model)) {}

bool PopupBaseView::OnNavigationClick(kelui::ui::UI_Node* /*node*/,
                                      const kelui::ui::MouseEvent& event, bool& handled,
                                      ShareForReviewViewID target) {
    handled = false;
    if (event.GetAction() != kelui::ui::PointerEvent::kDown) {
        return handled;
    }
    if (target == ShareForReviewViewID::SelectProject ||
        target == ShareForReviewViewID::SelectFolder) {
        utility::SDMLogging::LogLocationPickerOpened(!viewModel->GetCreateNewLinkMode());
    }
    viewModel->SetCurrentViewID(target);
    handled = true;
    return handled;
}

void PopupBaseView::SetClickNavigation(boost::intrusive_ptr<kelui::ui::UI_Node> node,
                                       ShareForReviewViewID target) {
    if (!node) {
        return;
    }
    // The control may outlive this screen (someone else may hold it): reach the screen weakly,
    // and without a reference, as screens call this from their constructors.
    const kelui::ui::UI_WeakNodePtr<PopupBaseView> weakView(this);
    auto function = std::make_shared<kelui::ui::UI_Node::MouseEventFunction>(
        [weakView, target](kelui::ui::UI_Node* clicked, const kelui::ui::MouseEvent& event,
                           bool& handled) {
            handled = false;
            if (auto view = weakView.Lock()) {
                return view->OnNavigationClick(clicked, event, handled, target);
            }
            return handled;
        });
    node->UI_AddCustomMouseEventFunction(std::move(function), 0);
}

std::function<void(kelui::controls::UI_Popup&)> PopupBaseView::MakeMenuFlagFunction(bool showing) {
    const kelui::ui::UI_WeakNodePtr<PopupBaseView> weakView(this);
    return [weakView, showing](kelui::controls::UI_Popup& /*popup*/) {
        const auto view = weakView.Lock();
        if (!view) {
            return;
        }
        for (kelui::ui::UI_Node* node = view->UI_GetParentNode(); node;
             node = node->UI_GetParentNode()) {
            if (auto* container = dynamic_cast<kelui::controls::UI_TouchPopupContainer*>(node)) {
                container->SetChildMenuShowing(showing);
                return;
            }
        }
    };
}

std::function<void(kelui::controls::UI_Popup&)> PopupBaseView::GetPreShowMenuFunction() {
    return MakeMenuFlagFunction(true);
}

std::function<void(kelui::controls::UI_Popup&)> PopupBaseView::GetPostShowMenuFunction() {
    return MakeMenuFlagFunction(false);
}

}  // namespace vantrokelui::view
