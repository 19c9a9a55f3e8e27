// The toolkit's own icons by name, from the resource manager that the host (or the library that
// carries the artwork) registers. Main thread.
//
//   auto folder = kelui::utility::ImageProvider::GetThemeImage("VantroFolder_Sm");
#pragma once

#include <memory>
#include <string>

#include <boost/intrusive_ptr.hpp>

#include <kelui/limner/ImageInterface.h>
#include <kelui/utility/ResourceManager.h>

namespace kelui::utility {

class ImageProvider {
public:
    /// The theme image `name`; null when no manager is registered or it has no such image.
    static boost::intrusive_ptr<limner::ImageInterface> GetThemeImage(const std::string& name);
    /// Registers the manager that theme images come from (kept weakly); null unregisters.
    static void SetThemeResourceManager(std::weak_ptr<ResourceManager> manager);
};

}  // namespace kelui::utility
