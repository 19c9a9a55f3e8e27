// Cryptographically strong randomness and the text form of the server's ids. Free functions
// over OpenSSL's generator; any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vantroserver::security {

/// `count` random bytes from OpenSSL's generator; throws std::runtime_error if it fails.
std::string RandomBytes(std::size_t count);

/// A fresh random 128-bit id in lower-case 8-4-4-4-12 hex form.
std::string NewId();

/// Whether `text` has exactly the form NewId() produces (36 characters, lower-case hex, dashes
/// at 8, 13, 18 and 23). Anything else is not an id of ours and can be answered "not found"
/// without a query.
bool IsWellFormedId(std::string_view text);

/// A random opaque token (`bytes` random bytes, base64url without padding) for codes and refresh
/// tokens.
std::string NewOpaqueToken(std::size_t bytes = 32);

}  // namespace vantroserver::security
