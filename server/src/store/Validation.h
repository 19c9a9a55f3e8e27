// Checks of names and other values before they reach the database, shared by the store's
// parts. Each throws StoreError(Kind::Invalid) with a message naming `what`. Any thread.
#pragma once

#include <cstddef>
#include <string_view>

namespace vantroserver::store {

/// Whether `text` is well-formed UTF-8 (no overlong forms, no surrogates).
bool IsValidUtf8(std::string_view text);

/// Non-empty, at most `maxLength` bytes, UTF-8, no control characters and, when
/// `allowSlash` is false, no '/'. Leading or trailing spaces are refused, so names that look
/// the same are the same.
void ValidateName(std::string_view what, std::string_view name, std::size_t maxLength,
                  bool allowSlash = true);

}  // namespace vantroserver::store
