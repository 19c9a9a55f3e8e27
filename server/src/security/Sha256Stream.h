// SHA-256 over data that arrives in pieces (a streamed upload part, a file read in blocks),
// through OpenSSL's EVP interface. Owned by whoever feeds it; one thread at a time.
//
//   Sha256Stream hash;
//   hash.Update(piece);            // as often as needed
//   std::string hex = hash.FinishHex();
#pragma once

#include <memory>
#include <span>
#include <string>

namespace vantroserver::security {

class Sha256Stream {
public:
    /// Throws std::runtime_error when OpenSSL cannot set up the digest.
    Sha256Stream();
    ~Sha256Stream();
    Sha256Stream(const Sha256Stream&) = delete;
    Sha256Stream& operator=(const Sha256Stream&) = delete;

    void Update(std::span<const char> data);
    /// The digest of everything fed so far as 64 lower-case hex digits; ends this hash.
    std::string FinishHex();

    /// Whether `text` is 64 hex digits (either case).
    static bool IsHexDigest(std::string_view text);
    /// `text` with its letters in lower case, as FinishHex() writes digests, so that a digest
    /// given in either case compares equal to a computed one.
    static std::string NormalizeHexDigest(std::string_view text);

private:
    struct ContextDeleter {
        void operator()(void* context) const;
    };
    std::unique_ptr<void, ContextDeleter> context;
};

}  // namespace vantroserver::security
