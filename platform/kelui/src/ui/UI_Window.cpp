#include <kelui/ui/UI_Window.h>

namespace kelui::ui {

UI_Window::~UI_Window() = default;

}  // namespace kelui::ui
