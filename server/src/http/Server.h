// The HTTP service over a data directory: accepts connections on a small thread pool, routes
// requests to the API, the sign-in pages, the event stream and the static files. One Server
// per process in `vantro-server serve`; tests and the load benchmark start their own.
//
//   vantroserver::http::Server server(options);
//   unsigned short port = server.Start();  // listening once this returns
//   server.Stop();                         // any thread; Start()'s threads are joined
#pragma once

#include <functional>
#include <memory>

#include "http/ServeOptions.h"

namespace vantroserver::http {

class Server {
public:
    /// Opens the database and the signing key; throws std::runtime_error with a clear message
    /// when the data directory, the TLS files or the listen address are unusable.
    explicit Server(ServeOptions options);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Makes SIGINT and SIGTERM stop the server (Wait returns). Call before Start, so a signal
    /// that comes right after the port is announced is not lost.
    void StopOnSignals();
    /// Binds, starts the worker threads and returns the port actually listened on.
    unsigned short Start();
    /// Blocks until Stop() is called or a handled signal arrives, then stops.
    void Wait();
    /// Closes the listener and every connection, joins the workers. Idempotent; any thread but
    /// the server's own workers (it joins them).
    void Stop();

private:
    class Impl;
    std::shared_ptr<Impl> impl;
};

/// Runs the service until SIGINT or SIGTERM. Calls `onListening` with the bound port once
/// connections are accepted (main prints the "listening on" line from it). Returns the
/// process exit code; failures to start are printed on stderr and give 1.
int RunServer(const ServeOptions& options, std::function<void(unsigned short)> onListening);

}  // namespace vantroserver::http
