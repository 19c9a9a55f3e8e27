// A modal dialog: a QDialog window whose body is an OS_ViewContainer, into which the owner pushes
// its content (which holds the dialog's own buttons). Esc and Enter act through the buttons given
// with SetButtons: Esc clicks the cancel button and Enter the commit button (when it is enabled),
// and the dialog then closes as cancelled (0) or committed (1) unless the owner's handler already
// closed it. RunModal shows it and returns the result. Owned by whoever made it (the dialog
// workflow host); main thread.
//
//   boost::intrusive_ptr<UI_Dialog> dialog(new UI_Dialog(supplier, u"", {0, 0}, parentWidget));
//   dialog->GetViewContainer()->ChildPushBack(mainView);
//   dialog->UI_SetLocalRect({0, 0, 340, 420});
//   dialog->Position();
//   dialog->SetContentSize(340.0f, 420.0f);
//   dialog->SetButtons(cancelButton, commitButton);
//   const int committed = dialog->RunModal();
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelcore/geom/PointT.h>
#include <kelcore/string/String.h>
#include <kelui/controls/OS_ViewContainer.h>
#include <kelui/limner/WidgetDrawingSupplier.h>
#include <kelui/ui/UI_Node.h>

class QWidget;

namespace kelui::controls {
class UI_Button;
}

namespace kelui::ui {

namespace detail {
class DialogWidget;
}

class UI_Dialog : public UI_Node {
public:
    /// A hidden dialog titled `title` with its top left at `position` (global), belonging to
    /// `parentWindow`'s window (null: none), which it stays above while it is shown. The dialog
    /// is no Qt child of that window, so closing the host's window never deletes the nodes
    /// inside the dialog under their owner. A null `supplier` means the default one; the nodes
    /// inside draw with it.
    UI_Dialog(std::shared_ptr<limner::WidgetDrawingSupplier> supplier,
              kelcore::string::string_view title, kelcore::geom::PointT<float> position,
              QWidget* parentWindow);
    ~UI_Dialog() override;

    /// The body; its parent node is this dialog. Never null.
    controls::OS_ViewContainer* GetViewContainer() const { return viewContainer.get(); }

    /// The buttons that Esc and Enter act through; either may be null (Esc then only closes as
    /// cancelled, Enter does nothing).
    void SetButtons(boost::intrusive_ptr<controls::UI_Button> cancel,
                    boost::intrusive_ptr<controls::UI_Button> commit);
    /// The buttons of SetButtons; null until it was called.
    const boost::intrusive_ptr<controls::UI_Button>& GetCancelButton() const {
        return cancelButton;
    }
    const boost::intrusive_ptr<controls::UI_Button>& GetCommitButton() const {
        return commitButton;
    }

    /// Shows the dialog modally and returns once it closed: 1 committed, 0 cancelled.
    int RunModal();
    /// Whether RunModal is showing it now.
    bool IsShownModal() const { return shownModal; }
    /// Closes the dialog as cancelled, without clicking any button. Does nothing when it is
    /// not open.
    void DefaultCloseCancel();

    /// Centres the dialog on its parent window, or on the primary screen without one, inside
    /// the screen's available area.
    void Position();
    /// Sizes the body to `width` × `height` (UI_SetLocalRect sizes the window). A window that
    /// has no size yet takes the body's.
    void SetContentSize(float width, float height);

    /// Brings the dialog to the front while it is shown; does nothing before RunModal shows it.
    void UI_Activate() override;
    /// Sizes the window (the position is Position's); the user cannot resize it.
    void UI_SetLocalRectF(const kelcore::geom::RectT<float>& rect) override;

protected:
    /// UI_Hide(true) closes an open dialog as cancelled, or as committed while the click that
    /// Enter gave the commit button is running (the owner closing it from that click); showing
    /// is RunModal's.
    void ApplyVisibility() override;

private:
    friend class detail::DialogWidget;

    /// Esc, or the window's close button.
    void OnCancelRequested();
    /// Enter or Return; answers whether it acted.
    bool OnCommitRequested();
    void Close(int result);

    detail::DialogWidget* dialog = nullptr;
    struct ParentWindow;
    std::unique_ptr<ParentWindow> parentWindow;
    boost::intrusive_ptr<controls::OS_ViewContainer> viewContainer;
    boost::intrusive_ptr<controls::UI_Button> cancelButton;
    boost::intrusive_ptr<controls::UI_Button> commitButton;
    bool shownModal = false;
    bool committing = false;
};

}  // namespace kelui::ui
