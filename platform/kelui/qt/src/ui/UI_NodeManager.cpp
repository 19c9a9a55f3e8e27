#include <kelui/ui/UI_NodeManager.h>

namespace kelui::ui {

UI_NodeManager& UI_NodeManager::Get(int /*reserved*/) {
    static UI_NodeManager manager;
    return manager;
}

UI_NodeManager::UI_NodeManager()
    : defaultSupplier(std::make_shared<limner::WidgetDrawingSupplier>()) {}

std::shared_ptr<limner::WidgetDrawingSupplier> UI_NodeManager::GetDefaultDrawSupplier() const {
    return defaultSupplier;
}

}  // namespace kelui::ui
