#include "IpAddress.h"

#include <arpa/inet.h>

namespace kelnet::detail {

std::string IpAddress::ToString() const {
    char text[INET6_ADDRSTRLEN] = {};
    if (::inet_ntop(family, bytes.data(), text, sizeof(text)) == nullptr) {
        return "?";
    }
    return text;
}

}  // namespace kelnet::detail
