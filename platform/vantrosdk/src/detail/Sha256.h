// A running SHA-256 (OpenSSL EVP) that gives its digest as lower-case hex, as the service's
// X-Content-SHA256 and completion bodies want it. Owned by one user at a time; not thread-safe.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <openssl/types.h>

namespace vantrosdk::detail {

class Sha256 {
public:
    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;

    void Update(const void* data, std::size_t size);
    /// The digest of everything given since construction (or the last Finish), in hex; starts
    /// over afterwards.
    std::string FinishHex();

private:
    struct FreeContext {
        void operator()(EVP_MD_CTX* context) const;
    };
    std::unique_ptr<EVP_MD_CTX, FreeContext> context;
};

}  // namespace vantrosdk::detail
