#include "security/PasswordHasher.h"

#include <openssl/evp.h>

#include <charconv>
#include <stdexcept>
#include <vector>

#include "security/Digest.h"
#include "security/Encoding.h"
#include "security/Random.h"

namespace vantroserver::security {

namespace {

constexpr std::string_view kScheme = "pbkdf2-sha256";
constexpr std::size_t kSaltSize = 16;
constexpr std::size_t kHashSize = 32;
// Refuses stored hashes that would take minutes to check (a tampered row must not stall a
// worker thread).
constexpr unsigned kMaxIterations = 10'000'000;

std::string Derive(std::string_view password, std::string_view salt, unsigned iterations) {
    std::string hash(kHashSize, '\0');
    if (PKCS5_PBKDF2_HMAC(password.data(), static_cast<int>(password.size()),
                          reinterpret_cast<const unsigned char*>(salt.data()),
                          static_cast<int>(salt.size()), static_cast<int>(iterations), EVP_sha256(),
                          static_cast<int>(hash.size()),
                          reinterpret_cast<unsigned char*>(hash.data())) != 1) {
        throw std::runtime_error("PBKDF2 failed");
    }
    return hash;
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    while (true) {
        const std::size_t end = text.find(separator, start);
        if (end == std::string_view::npos) {
            parts.push_back(text.substr(start));
            return parts;
        }
        parts.push_back(text.substr(start, end - start));
        start = end + 1;
    }
}

}  // namespace

PasswordHasher::PasswordHasher(unsigned iterations) : iterations(iterations) {
    if (iterations == 0 || iterations > kMaxIterations) {
        throw std::invalid_argument("PBKDF2 iterations must be between 1 and 10000000");
    }
}

std::string PasswordHasher::Hash(std::string_view password) const {
    const std::string salt = RandomBytes(kSaltSize);
    return std::string(kScheme) + "$" + std::to_string(iterations) + "$" + Base64UrlEncode(salt) +
           "$" + Base64UrlEncode(Derive(password, salt, iterations));
}

bool PasswordHasher::Verify(std::string_view password, std::string_view stored) {
    const auto parts = Split(stored, '$');
    if (parts.size() != 4 || parts[0] != kScheme) {
        return false;
    }
    unsigned count = 0;
    const auto [end, error] =
        std::from_chars(parts[1].data(), parts[1].data() + parts[1].size(), count);
    if (error != std::errc() || end != parts[1].data() + parts[1].size() || count == 0 ||
        count > kMaxIterations) {
        return false;
    }
    const auto salt = Base64UrlDecode(parts[2]);
    const auto hash = Base64UrlDecode(parts[3]);
    if (!salt || !hash || salt->empty() || hash->size() != kHashSize) {
        return false;
    }
    return ConstantTimeEquals(Derive(password, *salt, count), *hash);
}

}  // namespace vantroserver::security
