// SHA-256, HMAC-SHA256 and a constant-time comparison, via OpenSSL. Free functions; any thread.
#pragma once

#include <string>
#include <string_view>

namespace vantroserver::security {

/// The 32-byte SHA-256 digest of `data` (raw bytes).
std::string Sha256(std::string_view data);

/// The 32-byte HMAC-SHA256 of `data` under `key` (raw bytes).
std::string HmacSha256(std::string_view key, std::string_view data);

/// Compares without an early exit, so the time taken says nothing about where two secrets
/// differ. Different lengths compare unequal.
bool ConstantTimeEquals(std::string_view a, std::string_view b);

}  // namespace vantroserver::security
