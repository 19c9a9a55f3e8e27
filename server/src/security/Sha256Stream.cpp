#include "security/Sha256Stream.h"

#include <openssl/evp.h>

#include <stdexcept>

namespace vantroserver::security {

void Sha256Stream::ContextDeleter::operator()(void* pointer) const {
    EVP_MD_CTX_free(static_cast<EVP_MD_CTX*>(pointer));
}

Sha256Stream::Sha256Stream() : context(EVP_MD_CTX_new()) {
    if (!context ||
        EVP_DigestInit_ex(static_cast<EVP_MD_CTX*>(context.get()), EVP_sha256(), nullptr) != 1) {
        throw std::runtime_error("cannot set up SHA-256");
    }
}

Sha256Stream::~Sha256Stream() = default;

void Sha256Stream::Update(std::span<const char> data) {
    if (!data.empty() &&
        EVP_DigestUpdate(static_cast<EVP_MD_CTX*>(context.get()), data.data(), data.size()) != 1) {
        throw std::runtime_error("SHA-256 update failed");
    }
}

std::string Sha256Stream::FinishHex() {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (EVP_DigestFinal_ex(static_cast<EVP_MD_CTX*>(context.get()), digest, &length) != 1) {
        throw std::runtime_error("SHA-256 final failed");
    }
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    hex.reserve(length * 2);
    for (unsigned int i = 0; i < length; ++i) {
        hex.push_back(kDigits[digest[i] >> 4]);
        hex.push_back(kDigits[digest[i] & 0x0f]);
    }
    return hex;
}

bool Sha256Stream::IsHexDigest(std::string_view text) {
    if (text.size() != 64) {
        return false;
    }
    for (const char c : text) {
        const bool hex = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
        if (!hex) {
            return false;
        }
    }
    return true;
}

std::string Sha256Stream::NormalizeHexDigest(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return lower;
}

}  // namespace vantroserver::security
