#include <vantrokelui/view/SelectionBaseView.h>

#include <utility>

#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroUser.h>

namespace vantrokelui::view {

SelectionBaseView::SelectionBaseView(std::shared_ptr<VantroUser> user_) : user(std::move(user_)) {}

SelectionBaseView::~SelectionBaseView() = default;

void SelectionBaseView::CommitSelection() {
    if (!user) {
        return;
    }
    if (auto proposed = user->GetProposedSelection()) {
        user->SetSelection(proposed);
    }
}

}  // namespace vantrokelui::view
