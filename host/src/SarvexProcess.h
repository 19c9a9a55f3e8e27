// A private sarvex for one run of vantro-share: `sarvex serve --socket <path>` started in a
// temporary directory of its own and its own process group (so a Ctrl-C at the terminal reaches
// the host, which cancels through the library, and not the encoder), ready once it has printed
// `listening on <path>`. Stopped with SIGTERM and waited for when the object goes.
//
// Owned by the host's main function; main thread. `serve` prints nothing to its output after
// that line, so the pipe is closed once it has come: no thread is left to drain it, and nothing
// is left unjoined when a second Ctrl-C ends the process at once.
//
//   SarvexProcess sarvex("/usr/bin/sarvex");   // throws SarvexError when it does not start
//   auto connection = SarvexConnection::Connect(sarvex.SocketPath(), ...);
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace vantroshare {

class SarvexProcess {
public:
    /// Starts `executable serve --socket PATH` plus `extraArguments` and waits for its listening
    /// line. Throws SarvexError (naming the executable) when it cannot start or exits first.
    explicit SarvexProcess(const std::filesystem::path& executable,
                           const std::vector<std::string>& extraArguments = {});
    ~SarvexProcess();
    SarvexProcess(const SarvexProcess&) = delete;
    SarvexProcess& operator=(const SarvexProcess&) = delete;

    const std::string& SocketPath() const { return socketPath; }

private:
    void Stop();

    std::filesystem::path directory;
    std::string socketPath;
    pid_t child = -1;
    int output = -1;
};

}  // namespace vantroshare
