#include "security/Digest.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/sha.h>

#include <stdexcept>

namespace vantroserver::security {

std::string Sha256(std::string_view data) {
    std::string digest(SHA256_DIGEST_LENGTH, '\0');
    unsigned int length = 0;
    if (EVP_Digest(data.data(), data.size(), reinterpret_cast<unsigned char*>(digest.data()),
                   &length, EVP_sha256(), nullptr) != 1 ||
        length != SHA256_DIGEST_LENGTH) {
        throw std::runtime_error("SHA-256 failed");
    }
    return digest;
}

std::string HmacSha256(std::string_view key, std::string_view data) {
    std::string mac(SHA256_DIGEST_LENGTH, '\0');
    unsigned int length = 0;
    if (HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()),
             reinterpret_cast<const unsigned char*>(data.data()), data.size(),
             reinterpret_cast<unsigned char*>(mac.data()), &length) == nullptr ||
        length != SHA256_DIGEST_LENGTH) {
        throw std::runtime_error("HMAC-SHA256 failed");
    }
    return mac;
}

bool ConstantTimeEquals(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    return a.empty() || CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

}  // namespace vantroserver::security
