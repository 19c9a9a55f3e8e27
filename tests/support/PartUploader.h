// Sends upload parts to a real server in parallel (libcurl multi): each part is read from a
// source file at its offset as curl asks for it, with its SHA-256 header, and may be cut off
// part-way to play a client that goes away. Also hashes files and their parts. For upload
// tests; the test's thread.
//
//   PartUploader uploader(token);
//   auto replies = uploader.PutAll({{url, file, offset, size, Sha256OfFile(file, offset, size)}});
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace testsupport {

class PartUploader {
public:
    struct Part {
        std::string url;
        std::filesystem::path source;
        std::uint64_t offset = 0;
        std::uint64_t size = 0;
        std::string sha256;  ///< Sent as X-Content-SHA256.
        /// Stop the transfer after this many body bytes (the client goes away).
        std::optional<std::uint64_t> abortAfter;
    };
    struct Reply {
        long status = 0;  ///< 0 when no answer arrived.
        std::string body;
        std::string transportError;
    };

    explicit PartUploader(std::string accessToken) : accessToken(std::move(accessToken)) {}

    /// Sends every part at once, each on its own connection; the replies in the parts' order.
    std::vector<Reply> PutAll(const std::vector<Part>& parts) const;

    /// The SHA-256 (hex) of `size` bytes of `file` from `offset`.
    static std::string Sha256OfFile(const std::filesystem::path& file, std::uint64_t offset,
                                    std::uint64_t size);
    static std::string Sha256(const std::string& data);

private:
    std::string accessToken;
};

}  // namespace testsupport
