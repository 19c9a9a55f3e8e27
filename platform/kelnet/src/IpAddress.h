// An IPv4 or IPv6 address in network byte order, as the kernel's route lookup takes it.
// A plain value; any thread.
#pragma once

#include <sys/socket.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace kelnet::detail {

struct IpAddress {
    /// AF_INET or AF_INET6.
    int family = AF_INET;
    /// The first 4 (IPv4) or 16 (IPv6) bytes are the address.
    std::array<std::uint8_t, 16> bytes{};

    std::size_t Size() const noexcept { return family == AF_INET6 ? 16 : 4; }

    /// The usual text form, for traces.
    std::string ToString() const;

    friend bool operator==(const IpAddress&, const IpAddress&) = default;
};

}  // namespace kelnet::detail
