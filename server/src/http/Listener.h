// Accepts connections on one address and starts a Session for each, on its own strand. Owned by
// the server; its accept loop runs on the server's io_context.
#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <memory>

#include "http/Dispatcher.h"
#include "http/Session.h"

namespace vantroserver::http {

class Listener : public std::enable_shared_from_this<Listener> {
public:
    /// Binds and listens; throws boost::system::system_error when the address is unusable.
    Listener(boost::asio::io_context& context, const boost::asio::ip::tcp::endpoint& endpoint,
             std::shared_ptr<boost::asio::ssl::context> tls, std::shared_ptr<Dispatcher> dispatcher,
             Session::Limits limits);

    unsigned short Port() const;
    /// Begins accepting. Returns at once.
    void Run();
    /// Stops accepting; connections already open go on. Any thread.
    void Close();

private:
    void Accept();

    boost::asio::io_context& context;
    boost::asio::ip::tcp::acceptor acceptor;
    boost::asio::steady_timer retry;  // Paces accepting after a failure such as EMFILE.
    std::shared_ptr<boost::asio::ssl::context> tls;
    std::shared_ptr<Dispatcher> dispatcher;
    const Session::Limits limits;
};

}  // namespace vantroserver::http
