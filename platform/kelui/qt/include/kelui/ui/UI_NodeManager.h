// The process's registry of toolkit defaults: the drawing supplier that nodes outside any window
// measure with. One per process, made on first use; main thread.
//
//   auto supplier = kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier();
#pragma once

#include <memory>

#include <kelui/limner/WidgetDrawingSupplier.h>

namespace kelui::ui {

class UI_NodeManager {
public:
    /// The manager; `reserved` must be 0.
    static UI_NodeManager& Get(int reserved);

    /// A supplier that follows the application's palette. Never null.
    std::shared_ptr<limner::WidgetDrawingSupplier> GetDefaultDrawSupplier() const;

private:
    UI_NodeManager();
    std::shared_ptr<limner::WidgetDrawingSupplier> defaultSupplier;
};

}  // namespace kelui::ui
