// One HTTP exchange as a caller describes it: method, absolute URL, header fields, an optional
// body (bytes in memory, or a range of a file streamed from disk) and time limits. A plain
// value, moved into Transport::Send.
//
//   Request request{.method = "PUT", .url = partUrl,
//                   .headers = {{"X-Content-SHA256", hex}},
//                   .body = FileRange{path, offset, length}};
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <vantrocommon/http/FileRange.h>

namespace vantrocommon::http {

// Every field has an initializer, so designated initializers may name any subset of them.
struct Request {
    using Body = std::variant<std::monostate, std::string, FileRange>;

    std::string method = "GET";
    std::string url;
    /// Sent as given; Content-Length follows from the body. Never logged.
    std::vector<std::pair<std::string, std::string>> headers{};
    Body body{};

    /// Limit on the whole exchange; 0 for none (large uploads rely on `stallTimeout`).
    std::chrono::milliseconds timeout{0};
    /// Limit on making the connection.
    std::chrono::milliseconds connectTimeout{10'000};
    /// The exchange fails with kResultTimedOut when no byte moves for this long; 0 for none.
    std::chrono::milliseconds stallTimeout{30'000};

    /// Called on the transport's I/O thread as body bytes leave (a running total). It must be
    /// quick and must not call back into the transport.
    std::function<void(std::uint64_t bodyBytesSent)> onBodyProgress{};
    /// When set, a successful (2xx) answer's body is handed over here as it arrives instead of
    /// being kept in the Reply, whose body then stays empty; the future still completes when the
    /// answer ends (or fails, or is cancelled). For long-lived bodies such as an event stream.
    /// Other answers keep their body in the Reply. Called on the transport's I/O thread, in
    /// order; it must be quick and must not call back into the transport. An exception it
    /// throws is logged and the bytes are dropped.
    std::function<void(std::string_view chunk)> onBodyData{};
};

}  // namespace vantrocommon::http
