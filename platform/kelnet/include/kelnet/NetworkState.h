// Whether this machine can reach the service, as the connection monitor judges it.
#pragma once

#include <cstdint>

namespace kelnet {

enum class NetworkState : std::int32_t {
    Unknown = 0,       ///< the monitor is not running, or has not judged yet
    Connected = 1,     ///< the service endpoint has a route through an interface that is up
    Disconnected = 2,  ///< it has none, or its host cannot be resolved
};

}  // namespace kelnet
