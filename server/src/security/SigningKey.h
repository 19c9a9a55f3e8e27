// The server's HMAC signing key: 32 random bytes in a file readable by its owner only (0600).
// Created once by `init`; read by `serve`. Free functions; any thread.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace vantroserver::security {

class SigningKey {
public:
    static constexpr std::size_t kSize = 32;

    /// Writes a fresh key to `file` (created 0600, never overwritten); throws
    /// std::runtime_error when the file exists or cannot be written.
    static void Create(const std::filesystem::path& file);

    /// Reads the key; throws std::runtime_error with the path when it is missing, shorter than
    /// kSize or readable by others.
    static std::string Load(const std::filesystem::path& file);
};

}  // namespace vantroserver::security
