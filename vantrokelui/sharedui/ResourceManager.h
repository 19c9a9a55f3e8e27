// The library's own pictures: one resource manager over the SVG artwork that the library carries
// inside itself, and the image supply functions that hand its icons to controls. Main thread.
//
//   button->SetImageSupplyFunction(sharedui::BindImageSupplyFunction("S_Copy_16",
//                                                                    &sharedui::GetResourceManager));
#pragma once

#include <functional>
#include <memory>
#include <string>

#include <kelui/ui/ConstMessage.h>
#include <kelui/utility/ResourceManager.h>

namespace vantrokelui::sharedui {

/// The library's resource manager, made on first use. Its images are also the toolkit's theme
/// images (kelui::utility::ImageProvider) once it exists.
kelui::utility::ResourceManager& GetResourceManager();

/// A supply function that answers each picture request with the icon `name` of the manager
/// that `getManager` returns at that moment.
std::shared_ptr<std::function<void(kelui::ui::ConstMessage*)>> BindImageSupplyFunction(
    const std::string& name, const std::function<kelui::utility::ResourceManager&()>& getManager);

}  // namespace vantrokelui::sharedui
