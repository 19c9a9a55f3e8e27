#include "security/Random.h"

#include <openssl/rand.h>

#include <stdexcept>

#include "security/Encoding.h"

namespace vantroserver::security {

std::string RandomBytes(std::size_t count) {
    std::string bytes(count, '\0');
    if (count > 0 &&
        RAND_bytes(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(count)) != 1) {
        throw std::runtime_error("the system's random number generator failed");
    }
    return bytes;
}

std::string NewId() {
    const std::string hex = HexEncode(RandomBytes(16));
    std::string id;
    id.reserve(36);
    for (std::size_t i = 0; i < hex.size(); ++i) {
        if (i == 8 || i == 12 || i == 16 || i == 20) {
            id.push_back('-');
        }
        id.push_back(hex[i]);
    }
    return id;
}

bool IsWellFormedId(std::string_view text) {
    if (text.size() != 36) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (c != '-') {
                return false;
            }
        } else if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) {
            return false;
        }
    }
    return true;
}

std::string NewOpaqueToken(std::size_t bytes) {
    return Base64UrlEncode(RandomBytes(bytes));
}

}  // namespace vantroserver::security
