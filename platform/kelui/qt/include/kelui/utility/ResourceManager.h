// Where images come from by name: the toolkit's icons and a module's own pictures. Images are
// made once per name and kept. Main thread.
//
//   boost::intrusive_ptr<limner::ImageInterface> copy = manager.GetImage("S_Copy_16");
#pragma once

#include <string>

#include <boost/intrusive_ptr.hpp>

#include <kelui/limner/ImageInterface.h>

namespace kelui::utility {

class ResourceManager {
public:
    virtual ~ResourceManager() = default;

    /// The image named `name`, or null when this manager has none of that name.
    virtual boost::intrusive_ptr<limner::ImageInterface> GetImage(const std::string& name) = 0;
    /// Whether an image named `name` exists.
    virtual bool HasImage(const std::string& name) = 0;
};

}  // namespace kelui::utility
