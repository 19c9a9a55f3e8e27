// The workflow host that shows views in a modal dialog centred by the toolkit: how a host picks
// a cloud location without the panel. The dialog is made at each show and runs modally until the
// user cancels or commits it. Owned through WorkflowBase; main thread.
#pragma once

#include <kelui/controls/UI_Button.h>
#include <kelui/ui/UI_Dialog.h>
#include <vantrokelui/sharedui/WorkflowBase.h>
#include <vantrokelui/sharedui/WorkflowMainView.h>

namespace vantrokelui::view {

class DialogManager final : public sharedui::WorkflowBase {
public:
    DialogManager();
    /// Cancels a dialog still open and takes the main view out of it.
    ~DialogManager() override;

    /// Does nothing: a dialog is placed by the toolkit.
    void SetPopupPosition(kelcore::geom::PointT<float> position) override;
    /// A section around a view without a size starts hidden.
    boost::intrusive_ptr<sharedui::WorkflowSectionView> AddSection(
        std::size_t index, boost::intrusive_ptr<kelui::ui::UI_SubView> view) override;
    void ShowSection(boost::intrusive_ptr<sharedui::WorkflowSectionView> section) override;
    /// Makes the dialog, shows it modally and returns when it closes.
    void ShowWorkflow() override;
    /// Does nothing: a dialog commits through its buttons.
    void AddCommitCallback(std::function<void()> callback) override;
    void HideWorkflow() override;
    /// Stores the two buttons only when both identifiers name nodes in `view`; a node that is not
    /// a button raises the type-conversion error.
    void SetDialogButtons(boost::intrusive_ptr<kelui::ui::UI_Node> view,
                          const std::string& cancelNodeID,
                          const std::string& commitNodeID) override;
    /// Does nothing: a dialog hangs from no anchor.
    void SetAnchorNode(boost::intrusive_ptr<kelui::ui::UI_Node> node) override;
    /// Returns at once without a dialog or a window to centre it on.
    void UpdateLayout() override;

    const boost::intrusive_ptr<sharedui::WorkflowMainView>& GetMainView() const { return mainView; }
    /// The dialog; null until the first show.
    const boost::intrusive_ptr<kelui::ui::UI_Dialog>& GetDialog() const { return dialog; }
    const boost::intrusive_ptr<kelui::controls::UI_Button>& GetCancelButton() const {
        return cancelButton;
    }
    const boost::intrusive_ptr<kelui::controls::UI_Button>& GetCommitButton() const {
        return commitButton;
    }

private:
    boost::intrusive_ptr<sharedui::WorkflowMainView> mainView;
    boost::intrusive_ptr<kelui::ui::UI_Dialog> dialog;
    boost::intrusive_ptr<kelui::controls::UI_Button> cancelButton;
    boost::intrusive_ptr<kelui::controls::UI_Button> commitButton;
};

}  // namespace vantrokelui::view
