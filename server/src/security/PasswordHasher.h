// Hashes and checks passwords with PBKDF2-HMAC-SHA256 (OpenSSL) and a 16-byte random salt.
// The stored form carries its own iteration count, so lowering the count for a test suite only
// changes new hashes. A value; any thread.
//
//   PasswordHasher hasher;                      // kDefaultIterations
//   std::string stored = hasher.Hash("secret");
//   bool ok = PasswordHasher::Verify("secret", stored);
#pragma once

#include <string>
#include <string_view>

namespace vantroserver::security {

class PasswordHasher {
public:
    /// Slow on purpose: about a tenth of a second per check on a current core, which makes
    /// guessing offline expensive.
    static constexpr unsigned kDefaultIterations = 600'000;

    explicit PasswordHasher(unsigned iterations = kDefaultIterations);

    /// `pbkdf2-sha256$<iterations>$<salt base64url>$<hash base64url>`.
    std::string Hash(std::string_view password) const;

    /// Whether `password` matches `stored` (as made by Hash, with any iteration count).
    /// False for a malformed `stored`.
    static bool Verify(std::string_view password, std::string_view stored);

    unsigned Iterations() const { return iterations; }

private:
    unsigned iterations;
};

}  // namespace vantroserver::security
