#include "EndpointResolver.h"

#include <netdb.h>
#include <sys/socket.h>
#include <sys/types.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include <kelcore/debug/Trace.h>
#include <boost/url/parse.hpp>

namespace kelnet::detail {

namespace {

std::vector<IpAddress> LookUpName(const std::string& host) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int result = ::getaddrinfo(host.c_str(), nullptr, &hints, &found);
    if (result != 0) {
        kelcore::debug::Trace("kelnet", 2,
                              "Cannot resolve " + host + ": " + ::gai_strerror(result));
        return {};
    }
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> list(found, &::freeaddrinfo);
    std::vector<IpAddress> addresses;
    for (const addrinfo* entry = list.get(); entry != nullptr; entry = entry->ai_next) {
        IpAddress address;
        address.family = entry->ai_family;
        if (entry->ai_family == AF_INET && entry->ai_addrlen >= sizeof(sockaddr_in)) {
            sockaddr_in socketAddress{};
            std::memcpy(&socketAddress, entry->ai_addr, sizeof(socketAddress));
            std::memcpy(address.bytes.data(), &socketAddress.sin_addr, 4);
        } else if (entry->ai_family == AF_INET6 && entry->ai_addrlen >= sizeof(sockaddr_in6)) {
            sockaddr_in6 socketAddress{};
            std::memcpy(&socketAddress, entry->ai_addr, sizeof(socketAddress));
            std::memcpy(address.bytes.data(), &socketAddress.sin6_addr, 16);
        } else {
            continue;
        }
        if (std::find(addresses.begin(), addresses.end(), address) == addresses.end()) {
            addresses.push_back(address);
        }
    }
    return addresses;
}

}  // namespace

std::vector<IpAddress> EndpointResolver::Resolve(const std::string& url) {
    const auto parsed = boost::urls::parse_uri(url);
    if (!parsed) {
        kelcore::debug::Trace("kelnet", 2, "Not a URL: " + url);
        return {};
    }
    switch (parsed->host_type()) {
        case boost::urls::host_type::ipv4: {
            IpAddress address;
            address.family = AF_INET;
            const auto bytes = parsed->host_ipv4_address().to_bytes();
            std::copy(bytes.begin(), bytes.end(), address.bytes.begin());
            return {address};
        }
        case boost::urls::host_type::ipv6: {
            IpAddress address;
            address.family = AF_INET6;
            const auto bytes = parsed->host_ipv6_address().to_bytes();
            std::copy(bytes.begin(), bytes.end(), address.bytes.begin());
            return {address};
        }
        case boost::urls::host_type::name: {
            std::string host = parsed->host_name();
            if (host != keptHost || keptAddresses.empty()) {
                keptAddresses = LookUpName(host);
                keptHost = std::move(host);
            }
            return keptAddresses;
        }
        default:
            return {};
    }
}

}  // namespace kelnet::detail
