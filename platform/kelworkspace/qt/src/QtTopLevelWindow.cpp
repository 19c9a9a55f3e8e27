#include <kelworkspace/workspace/QtTopLevelWindow.h>

#include <kelui/limner/WidgetDrawingSupplier.h>
#include <kelui/ui/QtConversions.h>

namespace kelworkspace::workspace {

namespace {

class QtWorkspace final : public Workspace {
public:
    std::shared_ptr<limner::DrawingSupplier> GetDrawingSupplier() const override {
        return supplier;
    }
    std::shared_ptr<limner::WidgetDrawingSupplier> supplier =
        std::make_shared<limner::WidgetDrawingSupplier>();
};

}  // namespace

QtTopLevelWindow::QtTopLevelWindow(QWidget* window)
    : window(window), workspace(std::make_shared<QtWorkspace>()) {}

QtTopLevelWindow::~QtTopLevelWindow() = default;

kelcore::string::string QtTopLevelWindow::GetTitle() const {
    return window ? kelui::ui::FromQString(window->windowTitle()) : kelcore::string::string{};
}

std::shared_ptr<Workspace> QtTopLevelWindow::GetWorkspace() const {
    return workspace;
}

}  // namespace kelworkspace::workspace
