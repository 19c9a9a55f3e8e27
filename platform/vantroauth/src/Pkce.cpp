#include "Pkce.h"

#include <openssl/rand.h>
#include <openssl/sha.h>

#include <array>
#include <cstdint>

#include <kelcore/config/kel_exception.h>

#include <vantroauth/ResultCodes.h>

namespace vantroauth {

namespace {

template <std::size_t N>
std::string RandomBase64Url() {
    std::array<unsigned char, N> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
        throw kelcore::config::kel_exception("the random generator failed", kResultLoginFailed);
    }
    return Pkce::Base64Url(bytes.data(), bytes.size());
}

}  // namespace

Pkce Pkce::Create() {
    Pkce pkce;
    pkce.verifier = RandomBase64Url<48>();
    pkce.challenge = ChallengeOf(pkce.verifier);
    pkce.state = RandomBase64Url<32>();
    return pkce;
}

std::string Pkce::ChallengeOf(std::string_view verifier) {
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
    SHA256(reinterpret_cast<const unsigned char*>(verifier.data()), verifier.size(), digest.data());
    return Base64Url(digest.data(), digest.size());
}

std::string Pkce::Base64Url(const unsigned char* data, std::size_t size) {
    static constexpr char kAlphabet[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    std::string out;
    out.reserve((size * 4 + 2) / 3);
    std::uint32_t buffer = 0;
    int bits = 0;
    for (std::size_t i = 0; i < size; ++i) {
        buffer = (buffer << 8) | data[i];
        bits += 8;
        while (bits >= 6) {
            bits -= 6;
            out += kAlphabet[(buffer >> bits) & 0x3F];
        }
    }
    if (bits > 0) {
        out += kAlphabet[(buffer << (6 - bits)) & 0x3F];
    }
    return out;
}

}  // namespace vantroauth
