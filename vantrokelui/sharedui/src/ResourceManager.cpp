#include <vantrokelui/sharedui/ResourceManager.h>

#include <kelui/ui/UI_PictureSupplyMessage.h>
#include <kelui/utility/ImageProvider.h>
#include <kelui/utility/OS_ResourceManager.h>

namespace vantrokelui::sharedui {

namespace {

// The artwork is compiled into this library as Qt resources (see the library's CMakeLists), so
// the module carries its pictures inside itself wherever it is loaded from.
constexpr const char* kIconFolder = ":/vantrokelui/icons";

}  // namespace

kelui::utility::ResourceManager& GetResourceManager() {
    static const std::shared_ptr<kelui::utility::OS_ResourceManager> manager = [] {
        auto made = std::make_shared<kelui::utility::OS_ResourceManager>(kIconFolder);
        kelui::utility::ImageProvider::SetThemeResourceManager(made);
        return made;
    }();
    return *manager;
}

std::shared_ptr<std::function<void(kelui::ui::ConstMessage*)>> BindImageSupplyFunction(
    const std::string& name, const std::function<kelui::utility::ResourceManager&()>& getManager) {
    return std::make_shared<std::function<void(kelui::ui::ConstMessage*)>>(
        [name, getManager](kelui::ui::ConstMessage* message) {
            auto* request = dynamic_cast<kelui::ui::UI_PictureSupplyMessage*>(message);
            if (!request) {
                return;
            }
            kelui::utility::ResourceManager& manager = getManager();
            request->SetIcon(name, &manager, true, nullptr);
        });
}

}  // namespace vantrokelui::sharedui
