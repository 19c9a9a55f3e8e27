// A top-level window of the host, as the toolkit's Qt-free side knows it: something that toasts
// and dialogs can be parented to. The host (or the toolkit's Qt side) derives from it and owns
// the window; the toolkit only ever holds it weakly. Any thread may hold one; what a window does
// on screen is main-thread business of its implementation.
#pragma once

#include <kelcore/string/String.h>

namespace kelui::ui {

class UI_Window {
public:
    virtual ~UI_Window();

    /// The window's title, for messages that name the window. Any thread.
    virtual kelcore::string::string GetTitle() const = 0;

protected:
    UI_Window() = default;
    UI_Window(const UI_Window&) = default;
    UI_Window& operator=(const UI_Window&) = default;
};

}  // namespace kelui::ui
