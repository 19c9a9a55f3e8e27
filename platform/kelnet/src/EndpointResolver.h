// Turns the endpoint URL into the addresses whose routes decide the judgement. A numeric host
// is taken as it is; a name goes through getaddrinfo once and its addresses are kept until the
// URL's host changes, so a route change does not wait on DNS. A name that cannot be resolved
// is not kept: it is tried again at the next judgement. Owned by the monitor's session and used
// by one thread at a time (Start's, then the monitor's).
#pragma once

#include <string>
#include <vector>

#include "IpAddress.h"

namespace kelnet::detail {

class EndpointResolver {
public:
    /// The addresses of `url`'s host; empty when the URL has no host or it cannot be resolved.
    std::vector<IpAddress> Resolve(const std::string& url);

private:
    std::string keptHost;
    std::vector<IpAddress> keptAddresses;
};

}  // namespace kelnet::detail
