// Asks the kernel, over a short-lived NETLINK_ROUTE socket, which interface a packet to an
// address would leave by (RTM_GETROUTE) and whether that interface is up (RTM_GETLINK).
// Stateless; any thread.
#pragma once

#include <optional>

#include "IpAddress.h"

namespace kelnet::detail {

class RouteQuery {
public:
    RouteQuery() = delete;

    /// Whether `address` has a usable route through an interface that is up and running
    /// (a loopback interface that is up counts). False when the kernel has no route, the
    /// route is unreachable or prohibited, or the question cannot be asked.
    static bool IsReachable(const IpAddress& address);

    /// The output interface of the kernel's route to `address`; nullopt when there is none.
    static std::optional<int> OutputInterface(const IpAddress& address);

    /// The flags (IFF_*) of interface `index`; nullopt when the kernel does not know it.
    static std::optional<unsigned> InterfaceFlags(int index);
};

}  // namespace kelnet::detail
