// A lightweight popup window that hangs from an anchor node of the host's window: a frameless
// Qt::Popup with a 1-pixel border whose body is an OS_ViewContainer, into which the owner pushes
// its content. The user closes it by clicking outside it or pressing Esc; it then COMMITS: the
// commit function runs once and the window hides. Hiding it from code (UI_Hide(true)) does not
// commit. While a menu opened from inside it is showing (SetChildMenuShowing(true), which the
// panel's pre-show callbacks set), outside clicks and closing requests are refused, so the popup
// survives its own menus. The window is made once and shown again by each StartPopup. Owned by
// whoever made it (the popup workflow host); it keeps its anchor only weakly. Main thread.
//
//   boost::intrusive_ptr<UI_TouchPopupContainer> popup(
//       new UI_TouchPopupContainer(supplier, anchor, false, true, false, 2, true));
//   popup->GetContainer()->ChildPushBack(mainView);
//   popup->InstallNotifyOnCommit([weak] { if (auto self = weak.lock()) self->OnCommit(); });
//   popup->StartPopup();
//   popup->SetContentSize(x, y, width, height);
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelui/controls/OS_ViewContainer.h>
#include <kelui/limner/WidgetDrawingSupplier.h>
#include <kelui/ui/UI_Node.h>
#include <kelui/ui/UI_WeakNodePtr.h>

namespace kelui::controls {

namespace detail {
class PopupWindow;
}

class UI_TouchPopupContainer : public ui::UI_Node {
public:
    /// The creation options as the caller gave them. Qt's popup window behaves the same
    /// whatever they are; they are kept for callers that read them back.
    struct Options {
        bool first = false;
        bool second = false;
        bool third = false;
        std::uint32_t dpiSelectionType = 0;
        bool fifth = false;
    };

    /// A hidden popup for the nodes below `anchor`. A null `supplier` means the default one;
    /// the nodes inside draw with it.
    UI_TouchPopupContainer(std::shared_ptr<limner::WidgetDrawingSupplier> supplier,
                           boost::intrusive_ptr<ui::UI_Node> anchor, bool first, bool second,
                           bool third, std::uint32_t dpiSelectionType, bool fifth);
    ~UI_TouchPopupContainer() override;

    /// The body that fills the window; its parent node is this container. Never null.
    OS_ViewContainer* GetContainer() const { return viewContainer.get(); }
    /// Replaces the function that a commit runs; an empty function commits silently. A failure
    /// that the function throws is logged: it never crosses Qt's event loop.
    void InstallNotifyOnCommit(std::function<void()> commit);
    /// The function that a commit runs (empty when none was installed).
    const std::function<void()>& GetCommitFunction() const { return commitFunction; }

    /// Shows the window (where SetContentSize last put it) and gives the content the keyboard:
    /// its first focusable control, or the window itself. Showing it again only refocuses.
    void StartPopup();
    /// Puts the content's top left at (`x`, `y`) in global coordinates, `width` × `height`
    /// large: the window covers it exactly and the view container gets (0, 0, width, height).
    void SetContentSize(float x, float y, float width, float height);
    /// Whether the window is on screen.
    bool IsPopupShown() const;

    /// While true, outside clicks, Esc and deactivation leave the popup open and do not commit.
    void SetChildMenuShowing(bool showing) { childMenuShowing = showing; }
    bool IsChildMenuShowing() const { return childMenuShowing; }

    /// Raises the window while it is shown; Qt's popup handling already gives it the keyboard,
    /// and a hidden popup stays hidden.
    void UI_Activate() override;

    const Options& GetOptions() const { return options; }
    /// The anchor while it lives; null after.
    boost::intrusive_ptr<ui::UI_Node> GetAnchor() const { return anchor.Lock(); }

protected:
    /// UI_Hide(true) hides the window without committing; showing is StartPopup's.
    void ApplyVisibility() override;

private:
    friend class detail::PopupWindow;

    /// The window is asked to close (outside click, Esc, the platform): commits and answers
    /// true, or answers false while a child menu shows.
    bool OnWindowCloseRequested();
    void ShowWindow();
    void HideWindowWithoutCommit();
    void FocusContent();
    skins::Theme GetTheme() const;

    detail::PopupWindow* window = nullptr;
    boost::intrusive_ptr<OS_ViewContainer> viewContainer;
    ui::UI_WeakNodePtr<ui::UI_Node> anchor;
    Options options;
    std::function<void()> commitFunction;
    bool childMenuShowing = false;
    bool committing = false;
    bool hidingWithoutCommit = false;
    bool closingFromWindow = false;
};

}  // namespace kelui::controls
