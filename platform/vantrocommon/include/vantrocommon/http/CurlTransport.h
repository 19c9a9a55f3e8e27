// The HTTP transport over libcurl's multi interface. One I/O thread of its own drives every
// exchange; connections are reused per host, HTTP/2 is used where the server offers it (over
// TLS), TLS verification is always on (a CA file may be added for a local service), and file
// bodies are read from disk as they are sent. Futures complete on the given executor. Nothing
// it logs holds a header value or a body.
//
// Owned by shared pointer (usually one per client); destroying it cancels what still runs and
// joins the I/O thread. Any thread.
//
//   auto transport = CurlTransport::Create({.caFile = endpoint.caFile});
//   transport->Send({.url = endpoint.apiBase + "/v2/me", .headers = {{"Authorization", ...}}})
//       .Then(executor, [](const Future<Reply>& reply) { ... });
#pragma once

#include <memory>
#include <string>

#include <kelcore/threads/AsyncExecutor.h>

#include <vantrocommon/http/Transport.h>

namespace vantrocommon::http {

class CurlTransport : public Transport {
public:
    struct Options {
        /// PEM certificates to trust besides the system's; empty for the system's only.
        std::string caFile{};
        /// Where futures complete; null for kelcore::async::GetDefaultExecutor().
        std::shared_ptr<kelcore::threads::AsyncExecutor> executor{};
        /// Parallel connections to one host.
        long maxConnectionsPerHost = 8;
        std::string userAgent = "vantrokelui";
    };

    static std::shared_ptr<CurlTransport> Create(Options options);
    ~CurlTransport() override;

    kelcore::async::Future<Reply> Send(Request request,
                                       CancellationToken cancel = CancellationToken()) override;

    /// Any thread. Connections opened so far (a reused connection is not counted again).
    long ConnectionsOpened() const;

private:
    struct Impl;
    explicit CurlTransport(Options options);
    std::unique_ptr<Impl> impl;
};

}  // namespace vantrocommon::http
