#include <kelui/ui/QtWindow.h>

#include <mutex>

#include <kelui/ui/QtConversions.h>

namespace kelui::ui {

// The title is copied on the main thread whenever it changes, so that other threads never touch
// the widget.
struct QtWindow::TitleState {
    mutable std::mutex mutex;
    kelcore::string::string text;

    void Set(kelcore::string::string value) {
        const std::lock_guard lock(mutex);
        text = std::move(value);
    }
};

QtWindow::QtWindow(QWidget* widget)
    : window(widget ? widget->window() : nullptr), title(std::make_shared<TitleState>()) {
    if (!window) {
        return;
    }
    title->Set(FromQString(window->windowTitle()));
    // The connections die with the window; the state they write lives as long as either side.
    QObject::connect(window, &QWidget::windowTitleChanged, window,
                     [state = title](const QString& text) { state->Set(FromQString(text)); });
    QObject::connect(window, &QObject::destroyed, [state = title] { state->Set({}); });
}

QtWindow::~QtWindow() = default;

kelcore::string::string QtWindow::GetTitle() const {
    const std::lock_guard lock(title->mutex);
    return title->text;
}

}  // namespace kelui::ui
