#include <kelui/utility/ImageProvider.h>

#include <mutex>

namespace kelui::utility {

namespace {

// Kept weakly: the manager belongs to whoever carries the artwork (a host, a loaded library)
// and must not be kept alive past it by this process-wide registration.
struct Registration {
    std::mutex mutex;
    std::weak_ptr<ResourceManager> manager;
};

Registration& GetRegistration() {
    static Registration registration;
    return registration;
}

}  // namespace

boost::intrusive_ptr<limner::ImageInterface> ImageProvider::GetThemeImage(const std::string& name) {
    std::shared_ptr<ResourceManager> manager;
    {
        Registration& registration = GetRegistration();
        const std::lock_guard lock(registration.mutex);
        manager = registration.manager.lock();
    }
    return manager ? manager->GetImage(name) : nullptr;
}

void ImageProvider::SetThemeResourceManager(std::weak_ptr<ResourceManager> manager) {
    Registration& registration = GetRegistration();
    const std::lock_guard lock(registration.mutex);
    registration.manager = std::move(manager);
}

}  // namespace kelui::utility
