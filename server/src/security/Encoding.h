// Base64url (RFC 4648 section 5, no padding) and lower-case hex, as used in tokens, JWTs and
// stored hashes. Free functions; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantroserver::security {

/// Base64url without padding.
std::string Base64UrlEncode(std::string_view bytes);
/// Decodes base64url with or without padding; nothing when a character is outside the alphabet
/// or the length is impossible.
std::optional<std::string> Base64UrlDecode(std::string_view text);

/// Lower-case hex of `bytes`.
std::string HexEncode(std::string_view bytes);

}  // namespace vantroserver::security
