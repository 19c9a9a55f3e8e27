#include "SocketServer.h"

#include <sys/stat.h>

#include <stdexcept>
#include <utility>

namespace sarvex {
namespace {

namespace asio = boost::asio;
using asio::local::stream_protocol;

}  // namespace

SocketServer::SocketServer(asio::io_context& io, std::shared_ptr<RenderQueue> queue,
                           std::filesystem::path socketPath)
    : io(io), queue(std::move(queue)), socketPath(std::move(socketPath)), acceptor(io) {}

SocketServer::~SocketServer() {
    RemoveSocketFile();
}

void SocketServer::Listen() {
    const auto path = socketPath.string();
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0) {
        if (!S_ISSOCK(status.st_mode))
            throw std::runtime_error(path + " exists and is not a socket; not replacing it");
        stream_protocol::socket probe(io);
        boost::system::error_code error;
        probe.connect(stream_protocol::endpoint(path), error);
        if (!error)
            throw std::runtime_error("another sarvex is already listening on " + path);
        // Nothing answers: the socket file of a sarvex that did not exit cleanly.
        std::filesystem::remove(socketPath);
    }
    boost::system::error_code error;
    acceptor.open(stream_protocol(), error);
    if (!error)
        acceptor.bind(stream_protocol::endpoint(path), error);
    if (!error)
        acceptor.listen(asio::socket_base::max_listen_connections, error);
    if (error)
        throw std::runtime_error("cannot listen on " + path + ": " + error.message());
    listening = true;
    Accept();
}

void SocketServer::Accept() {
    acceptor.async_accept([self = shared_from_this()](const boost::system::error_code& error,
                                                      stream_protocol::socket socket) {
        if (error == asio::error::operation_aborted || !self->acceptor.is_open())
            return;
        if (!error) {
            auto connection = std::make_shared<ClientConnection>(std::move(socket), self->queue);
            std::erase_if(self->connections, [](const auto& weak) { return weak.expired(); });
            self->connections.push_back(connection);
            connection->Start();
        }
        self->Accept();
    });
}

void SocketServer::Close() {
    if (!listening)
        return;
    boost::system::error_code ignored;
    acceptor.close(ignored);
    RemoveSocketFile();
    for (const auto& weak : connections) {
        if (auto connection = weak.lock())
            connection->CloseAfterWrites();
    }
    connections.clear();
}

void SocketServer::RemoveSocketFile() {
    if (!listening)
        return;
    listening = false;
    std::error_code ignored;
    std::filesystem::remove(socketPath, ignored);
}

}  // namespace sarvex
