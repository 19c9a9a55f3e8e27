// A tiny HTTP/2-over-TLS server run by node for transport tests: every request is answered
// 200 with the negotiated protocol ("h2") as its body, a mixed-case header and a header
// sent twice (X-Repeated: first, then second). Started from a
// script written to a temporary directory; stopped (SIGTERM) by the destructor. The test's
// thread.
//
//   NodeHttp2Server server;
//   if (!server.Start(cert, key)) GTEST_SKIP() << server.Problem();
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>

#include "support/TemporaryDirectory.h"

namespace vantrocommontest {

class NodeHttp2Server {
public:
    NodeHttp2Server() = default;
    ~NodeHttp2Server();
    NodeHttp2Server(const NodeHttp2Server&) = delete;
    NodeHttp2Server& operator=(const NodeHttp2Server&) = delete;

    /// Whether a `node` executable is on the PATH.
    static bool NodeAvailable();

    /// Starts the server and waits for its port; false (see Problem) when it did not start.
    bool Start(const std::filesystem::path& certificate, const std::filesystem::path& key);
    const std::string& Problem() const { return problem; }
    /// `https://127.0.0.1:PORT` followed by `path`.
    std::string Url(const std::string& path) const;

private:
    testsupport::TemporaryDirectory directory;
    pid_t child = -1;
    int output = -1;
    unsigned short port = 0;
    std::string problem;
};

}  // namespace vantrocommontest
