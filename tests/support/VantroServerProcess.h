// The real `vantro-server` executable for integration tests: a fresh data directory made with
// `vantro-server init` and the admin commands, and a `serve` child process on a free loopback
// port (read from the first line the server prints). Owned by one test; the test's thread.
//
//   VantroServerProcess server;
//   const auto user = server.Admin({"user", "add", "--username", "ann", "--password", "pw"});
//   server.Start();
//   client.Get(server.Url("/v2/me"));
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/TemporaryDirectory.h"

namespace testsupport {

class VantroServerProcess {
public:
    /// Creates the data directory with `vantro-server init`. Throws std::runtime_error when the
    /// command fails.
    VantroServerProcess();
    /// Stops the server if it runs.
    ~VantroServerProcess();
    VantroServerProcess(const VantroServerProcess&) = delete;
    VantroServerProcess& operator=(const VantroServerProcess&) = delete;

    /// Runs `vantro-server <args> --data DIR` to completion and returns what it printed on
    /// stdout, trailing newline removed. Throws std::runtime_error (with stderr) on a non-zero
    /// exit.
    std::string Admin(std::vector<std::string> args) const;
    /// The same, returning the exit code and both outputs instead of throwing.
    struct Result {
        int exitCode = -1;
        std::string out, err;
    };
    Result Run(std::vector<std::string> args) const;

    /// Starts `vantro-server serve --data DIR --listen 127.0.0.1:0 <extra>` and waits for its
    /// "listening on" line. Throws std::runtime_error when the server exits first.
    void Start(std::vector<std::string> extra = {});
    /// Sends SIGTERM and waits for the exit; returns the exit status (or -1 when not running).
    int Stop();

    bool Running() const { return child > 0; }
    unsigned short Port() const { return port; }
    /// `http://127.0.0.1:PORT` followed by `path`.
    std::string Url(const std::string& path) const;
    const std::filesystem::path& DataDir() const { return dataDir; }
    /// The "listening on ..." line the server printed.
    const std::string& ListeningLine() const { return listeningLine; }

    static std::filesystem::path Executable();

private:
    TemporaryDirectory directory;
    std::filesystem::path dataDir;
    pid_t child = -1;
    int serverOutput = -1;  // Held open so a late write on stdout cannot kill the server.
    unsigned short port = 0;
    std::string scheme = "http";
    std::string listeningLine;
};

}  // namespace testsupport
