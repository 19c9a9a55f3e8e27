// The base of controls and of the views built from them: a view that can tell its owner that
// it changed (a button was pressed, a popup item chosen). Over a plain widget unless a control
// brings its own. Main thread.
//
//   button->NotifyWhenChanged([weak] { if (auto self = weak.lock()) self->OnShareClicked(); });
#pragma once

#include <functional>

#include <kelui/ui/UI_SubView.h>

namespace kelui::controls {

class UI_ControlView : public ui::UI_SubView {
public:
    UI_ControlView() = default;

    /// Calls `function` each time the control changes; replaces the function before. An empty
    /// function stops the notifications.
    void NotifyWhenChanged(std::function<void()> function);
    /// Shorthand for UI_SetDisabled.
    void SetDisabled(bool disabled) { UI_SetDisabled(disabled); }

protected:
    explicit UI_ControlView(QWidget* widget) : UI_SubView(widget) {}

    /// Runs the change function, if any. The control stays alive through it.
    void NotifyChanged();

private:
    std::function<void()> changed;
};

}  // namespace kelui::controls
