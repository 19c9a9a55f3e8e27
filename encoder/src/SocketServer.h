// The Unix socket `sarvex serve` listens on. Refuses a path another sarvex answers on, takes
// over a stale socket file left by one that died, and removes its socket file when closed.
// Each accepted client becomes a ClientConnection. Lives on the io_context's thread; owned by
// main through shared_ptr (its accept loop holds it while waiting).
//
//   auto server = std::make_shared<SocketServer>(io, queue, "/run/user/1000/sarvex.sock");
//   server->Listen();  // throws std::runtime_error with a message for the user
#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <boost/asio/local/stream_protocol.hpp>

#include "ClientConnection.h"
#include "RenderQueue.h"

namespace sarvex {

class SocketServer : public std::enable_shared_from_this<SocketServer> {
public:
    SocketServer(boost::asio::io_context& io, std::shared_ptr<RenderQueue> queue,
                 std::filesystem::path socketPath);
    /// Removes the socket file if Close() has not.
    ~SocketServer();
    SocketServer(const SocketServer&) = delete;
    SocketServer& operator=(const SocketServer&) = delete;

    /// Binds and starts accepting. Throws std::runtime_error when another sarvex answers on
    /// the path, when the path is something other than a socket, or when binding fails.
    void Listen();
    /// Stops accepting, lets each client read its last reports, then closes it; removes the
    /// socket file. Does nothing the second time.
    void Close();

private:
    void Accept();
    void RemoveSocketFile();

    boost::asio::io_context& io;
    std::shared_ptr<RenderQueue> queue;
    std::filesystem::path socketPath;
    boost::asio::local::stream_protocol::acceptor acceptor;
    std::vector<std::weak_ptr<ClientConnection>> connections;
    bool listening = false;
};

}  // namespace sarvex
