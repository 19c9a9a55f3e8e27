#include "http/Listener.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/strand.hpp>
#include <iostream>

namespace vantroserver::http {

namespace asio = boost::asio;

Listener::Listener(asio::io_context& context, const asio::ip::tcp::endpoint& endpoint,
                   std::shared_ptr<asio::ssl::context> tls, std::shared_ptr<Dispatcher> dispatcher,
                   Session::Limits limits)
    : context(context),
      acceptor(asio::make_strand(context)),
      retry(acceptor.get_executor()),
      tls(std::move(tls)),
      dispatcher(std::move(dispatcher)),
      limits(limits) {
    acceptor.open(endpoint.protocol());
    acceptor.set_option(asio::socket_base::reuse_address(true));
    acceptor.bind(endpoint);
    acceptor.listen(asio::socket_base::max_listen_connections);
}

unsigned short Listener::Port() const {
    return acceptor.local_endpoint().port();
}

void Listener::Run() {
    Accept();
}

void Listener::Close() {
    asio::dispatch(acceptor.get_executor(), [self = shared_from_this()] {
        boost::system::error_code ignored;
        self->acceptor.close(ignored);
        self->retry.cancel();
    });
}

void Listener::Accept() {
    acceptor.async_accept(
        asio::make_strand(context),
        [self = shared_from_this()](boost::system::error_code error, asio::ip::tcp::socket socket) {
            if (error == asio::error::operation_aborted || !self->acceptor.is_open()) {
                return;
            }
            if (error) {
                // Out of descriptors and the like: this connection is lost; try again shortly
                // rather than spinning on the same failure.
                std::cerr << "vantro-server: accept failed: " << error.message() << std::endl;
                self->retry.expires_after(std::chrono::milliseconds(100));
                self->retry.async_wait([self](boost::system::error_code waitError) {
                    if (!waitError) {
                        self->Accept();
                    }
                });
                return;
            }
            boost::system::error_code ignored;
            socket.set_option(asio::ip::tcp::no_delay(true), ignored);
            Session::Start(std::move(socket), self->tls, self->dispatcher, self->limits);
            self->Accept();
        });
}

}  // namespace vantroserver::http
