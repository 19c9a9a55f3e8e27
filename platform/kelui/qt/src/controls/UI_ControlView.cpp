#include <kelui/controls/UI_ControlView.h>

namespace kelui::controls {

void UI_ControlView::NotifyWhenChanged(std::function<void()> function) {
    changed = std::move(function);
}

void UI_ControlView::NotifyChanged() {
    // The function may drop the last outside reference to this control (a screen replaced).
    const boost::intrusive_ptr<UI_ControlView> keep(this);
    if (const auto function = changed) {
        function();
    }
}

}  // namespace kelui::controls
