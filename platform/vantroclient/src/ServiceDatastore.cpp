// Groundwork only: the service's datastore is being written on its own branch.
#include <vantroclient/ServiceDatastore.h>

#include <stdexcept>

namespace vantro {

std::shared_ptr<VantroDatastore> CreateServiceDatastore(ServiceDatastoreOptions) {
    throw std::logic_error("the service datastore is not written yet");
}

}  // namespace vantro
