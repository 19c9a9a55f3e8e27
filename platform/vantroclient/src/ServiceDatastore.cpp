#include <vantroclient/ServiceDatastore.h>

#include "detail/ServiceDatastoreImpl.h"

namespace vantro {

std::shared_ptr<VantroDatastore> CreateServiceDatastore(ServiceDatastoreOptions options) {
    return detail::ServiceDatastoreImpl::Create(std::move(options));
}

}  // namespace vantro
