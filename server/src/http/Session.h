// One client connection: reads HTTP/1.1 requests in turn (keep-alive), enforces the header and
// body limits (413 before reading an oversized body), asks the dispatcher for the answer and
// writes it, or holds the connection open as an event stream. A streamed route's body is not
// held: it goes piece by piece to the route's BodySink, which is aborted if the client leaves. Each
// connection runs on its own strand of the server's io_context and keeps itself alive through its
// pending operations.
#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <chrono>
#include <memory>

#include "http/Dispatcher.h"

namespace vantroserver::http {

class Session {
public:
    struct Limits {
        std::size_t maxBody = 1024 * 1024;  ///< For bodies read into memory, not streamed ones.
        std::uint32_t maxHeader = 16 * 1024;
        std::chrono::seconds idleTimeout{60};
        std::chrono::seconds keepAliveComment{15};
    };

    /// Starts serving `socket` (already on a strand); TLS when `tls` is set. Returns at once.
    static void Start(boost::asio::ip::tcp::socket socket,
                      std::shared_ptr<boost::asio::ssl::context> tls,
                      std::shared_ptr<Dispatcher> dispatcher, Limits limits);
};

}  // namespace vantroserver::http
