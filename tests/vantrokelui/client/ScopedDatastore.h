// Installs a datastore under the empty name for the life of a test and puts none back after,
// so that the next lookup would make the service's again. The test's thread.
//
//   clienttest::ScopedDatastore installed(fake);
#pragma once

#include <memory>

#include <kelcore/utility/ImmutableString.h>
#include <vantroclient/VantroDatastore.h>

namespace clienttest {

class ScopedDatastore {
public:
    explicit ScopedDatastore(std::shared_ptr<vantro::VantroDatastore> datastore) {
        vantro::VantroDatastore::SetDatastore(kelcore::utility::ImmutableString(),
                                              std::move(datastore));
    }
    ~ScopedDatastore() {
        vantro::VantroDatastore::SetDatastore(kelcore::utility::ImmutableString(), nullptr);
    }
    ScopedDatastore(const ScopedDatastore&) = delete;
    ScopedDatastore& operator=(const ScopedDatastore&) = delete;
};

}  // namespace clienttest
