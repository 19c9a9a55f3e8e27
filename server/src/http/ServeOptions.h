// What `vantro-server serve` was asked for: where the data lives, where to listen, limits and
// switches. A plain value filled by the command line and read by the server at start.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace vantroserver::http {

/// At most `requests` requests per access token in any window of `window`.
struct RateLimit {
    std::size_t requests = 0;
    std::chrono::milliseconds window{0};
};

struct ServeOptions {
    std::filesystem::path dataDir;
    std::string listenAddress = "127.0.0.1";
    unsigned short port = 0;  ///< 0 picks a free port, reported through onListening.
    std::optional<RateLimit> rateLimit;
    std::chrono::seconds accessTokenTtl{3600};
    std::size_t pageSize = 100;
    std::optional<std::filesystem::path> tlsCert, tlsKey;
    bool enableTestHooks = false;
    /// How long an upload may stay unfinished before it and its bytes are removed.
    std::chrono::seconds uploadTtl{86400};
    /// The base of the URLs handed out (review links); the listening address when empty.
    std::optional<std::string> publicUrl;
};

}  // namespace vantroserver::http
