#include "detail/Sha256.h"

#include <openssl/evp.h>

#include <new>

namespace vantrosdk::detail {

void Sha256::FreeContext::operator()(EVP_MD_CTX* context) const {
    EVP_MD_CTX_free(context);
}

Sha256::Sha256() : context(EVP_MD_CTX_new()) {
    if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
        throw std::bad_alloc();
    }
}

Sha256::~Sha256() = default;

void Sha256::Update(const void* data, std::size_t size) {
    EVP_DigestUpdate(context.get(), data, size);
}

std::string Sha256::FinishHex() {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_DigestFinal_ex(context.get(), digest, &length);
    EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr);
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    hex.reserve(length * 2);
    for (unsigned int i = 0; i < length; ++i) {
        hex.push_back(kDigits[digest[i] >> 4]);
        hex.push_back(kDigits[digest[i] & 0x0f]);
    }
    return hex;
}

}  // namespace vantrosdk::detail
