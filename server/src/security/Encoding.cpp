#include "security/Encoding.h"

#include <array>
#include <cstdint>

namespace vantroserver::security {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

int ValueOf(char c) {
    if (c >= 'A' && c <= 'Z') {
        return c - 'A';
    }
    if (c >= 'a' && c <= 'z') {
        return c - 'a' + 26;
    }
    if (c >= '0' && c <= '9') {
        return c - '0' + 52;
    }
    if (c == '-') {
        return 62;
    }
    if (c == '_') {
        return 63;
    }
    return -1;
}

}  // namespace

// OpenSSL's EVP_EncodeBlock speaks only the standard alphabet with padding and line rules of
// its own; translating its output costs as much code as these few lines.
std::string Base64UrlEncode(std::string_view bytes) {
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    std::size_t i = 0;
    for (; i + 3 <= bytes.size(); i += 3) {
        const std::uint32_t n = (std::uint32_t{static_cast<unsigned char>(bytes[i])} << 16) |
                                (std::uint32_t{static_cast<unsigned char>(bytes[i + 1])} << 8) |
                                std::uint32_t{static_cast<unsigned char>(bytes[i + 2])};
        out.push_back(kAlphabet[(n >> 18) & 63]);
        out.push_back(kAlphabet[(n >> 12) & 63]);
        out.push_back(kAlphabet[(n >> 6) & 63]);
        out.push_back(kAlphabet[n & 63]);
    }
    const std::size_t rest = bytes.size() - i;
    if (rest == 1) {
        const std::uint32_t n = std::uint32_t{static_cast<unsigned char>(bytes[i])} << 16;
        out.push_back(kAlphabet[(n >> 18) & 63]);
        out.push_back(kAlphabet[(n >> 12) & 63]);
    } else if (rest == 2) {
        const std::uint32_t n = (std::uint32_t{static_cast<unsigned char>(bytes[i])} << 16) |
                                (std::uint32_t{static_cast<unsigned char>(bytes[i + 1])} << 8);
        out.push_back(kAlphabet[(n >> 18) & 63]);
        out.push_back(kAlphabet[(n >> 12) & 63]);
        out.push_back(kAlphabet[(n >> 6) & 63]);
    }
    return out;
}

std::optional<std::string> Base64UrlDecode(std::string_view text) {
    while (!text.empty() && text.back() == '=') {
        text.remove_suffix(1);
    }
    if (text.size() % 4 == 1) {
        return std::nullopt;
    }
    std::string out;
    out.reserve(text.size() * 3 / 4);
    std::uint32_t buffer = 0;
    int bits = 0;
    for (const char c : text) {
        const int value = ValueOf(c);
        if (value < 0) {
            return std::nullopt;
        }
        buffer = (buffer << 6) | static_cast<std::uint32_t>(value);
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            out.push_back(static_cast<char>((buffer >> bits) & 0xff));
        }
    }
    // Leftover bits must be zero, so every byte string has exactly one encoding.
    if ((buffer & ((1u << bits) - 1)) != 0) {
        return std::nullopt;
    }
    return out;
}

std::string HexEncode(std::string_view bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string out;
    out.reserve(bytes.size() * 2);
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        out.push_back(kDigits[b >> 4]);
        out.push_back(kDigits[b & 15]);
    }
    return out;
}

}  // namespace vantroserver::security
