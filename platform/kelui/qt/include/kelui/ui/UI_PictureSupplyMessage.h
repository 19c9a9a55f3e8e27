// The message a control sends to its image supply function when it needs its picture: the
// function answers by setting an icon (by resource name) or an image on it. This is how the
// panel hands pictures to controls without the controls knowing where pictures come from.
// Main thread.
//
//   auto supply = std::make_shared<std::function<void(kelui::ui::ConstMessage*)>>(
//       [](kelui::ui::ConstMessage* message) {
//           if (auto* request = dynamic_cast<UI_PictureSupplyMessage*>(message))
//               request->SetIcon("S_Copy_16", &GetResourceManager(), true, nullptr);
//       });
//   copyButton->SetImageSupplyFunction(supply);
#pragma once

#include <functional>
#include <memory>
#include <string>

#include <boost/intrusive_ptr.hpp>

#include <kelui/limner/ImageInterface.h>
#include <kelui/ui/ConstMessage.h>

namespace kelui::utility {
class ResourceManager;
}

namespace kelui::ui {

/// What a control holds to get its picture; may be null (no picture).
using ImageSupplyFunction = std::shared_ptr<std::function<void(ConstMessage*)>>;

class UI_PictureSupplyMessage final : public ConstMessage {
public:
    /// Sets the picture to the icon `name` of `manager`. `themed` true lets monochrome artwork
    /// take the theme's text colour; `reserved` must be null. A name the manager lacks sets
    /// nothing.
    void SetIcon(const std::string& name, utility::ResourceManager* manager, bool themed,
                 void* reserved);
    /// Sets the picture to `image` directly.
    void SetImage(boost::intrusive_ptr<limner::ImageInterface> image);

    /// The picture set, or null when none was.
    const boost::intrusive_ptr<limner::ImageInterface>& GetImage() const { return image; }
    /// The icon name set by SetIcon, or empty.
    const std::string& GetIconName() const { return iconName; }

private:
    boost::intrusive_ptr<limner::ImageInterface> image;
    std::string iconName;
};

/// Asks `supply` for a picture; null when it is null or sets none.
boost::intrusive_ptr<limner::ImageInterface> RequestPicture(const ImageSupplyFunction& supply);

}  // namespace kelui::ui
