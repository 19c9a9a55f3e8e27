#include "http/Server.h"

#include <iostream>
#include <stdexcept>

namespace vantroserver::http {

class Server::Impl {};

Server::Server(ServeOptions) : impl(std::make_shared<Impl>()) {}
Server::~Server() = default;
unsigned short Server::Start() {
    throw std::runtime_error("the HTTP service is not built yet");
}
void Server::Wait(bool) {}
void Server::Stop() {}

int RunServer(const ServeOptions& options, std::function<void(unsigned short)> onListening) {
    try {
        Server server(options);
        onListening(server.Start());
        server.Wait(true);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "vantro-server: " << error.what() << "\n";
        return 1;
    }
}

}  // namespace vantroserver::http
