#include <vantroclient/VantroDatastore.h>

#include <map>
#include <mutex>

#include <vantroclient/ServiceDatastore.h>

namespace vantro {

const kelcore::utility::ImmutableString VantroAsset::kFolder("folder");
const kelcore::utility::ImmutableString VantroAsset::kFile("file");
const kelcore::utility::ImmutableString VantroAsset::kVersionStack("version_stack");
const kelcore::utility::ImmutableString VantroAsset::kBundle("bundle");

namespace {

struct Registry {
    std::mutex mutex;
    std::map<std::string, std::shared_ptr<VantroDatastore>, std::less<>> datastores;
};

Registry& TheRegistry() {
    static Registry registry;
    return registry;
}

}  // namespace

std::shared_ptr<VantroDatastore> VantroDatastore::GetDatastore(
    const kelcore::utility::ImmutableString& name) {
    auto& registry = TheRegistry();
    std::lock_guard lock(registry.mutex);
    auto& datastore = registry.datastores[name.AsStdString()];
    if (!datastore) {
        datastore = CreateServiceDatastore();
    }
    return datastore;
}

void VantroDatastore::SetDatastore(const kelcore::utility::ImmutableString& name,
                                   std::shared_ptr<VantroDatastore> datastore) {
    auto& registry = TheRegistry();
    std::lock_guard lock(registry.mutex);
    registry.datastores[name.AsStdString()] = std::move(datastore);
}

}  // namespace vantro
