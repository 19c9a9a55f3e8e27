#include "http/Session.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/stream_traits.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/chunk_encode.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/message_generator.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/serializer.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>
#include <deque>
#include <optional>
#include <vector>

#include "events/EventSubscription.h"

namespace vantroserver::http {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
using beast::error_code;
using beasthttp::status;

using PlainStream = beast::tcp_stream;
using TlsStream = beast::ssl_stream<beast::tcp_stream>;

constexpr std::chrono::seconds kHandshakeTimeout{10};

// After refusing a request mid-body, what the client still sends is read and dropped for a
// while, so closing does not reset the connection before the client reads the answer.
constexpr std::chrono::seconds kLingerTimeout{5};
constexpr std::size_t kLingerBytes = 8 * 1024 * 1024;

// How much of a streamed body is handed to its sink at a time.
constexpr std::size_t kStreamPieceSize = 256 * 1024;

template <class Stream>
class Connection : public std::enable_shared_from_this<Connection<Stream>> {
public:
    Connection(asio::ip::tcp::socket socket, std::shared_ptr<asio::ssl::context> tls,
               std::shared_ptr<Dispatcher> dispatcher, Session::Limits limits)
        : tls(std::move(tls)),
          stream(MakeStream(std::move(socket), this->tls)),
          dispatcher(std::move(dispatcher)),
          limits(limits),
          timer(stream.get_executor()) {}

    ~Connection() {
        // The server stopped with a body half read: its sink keeps nothing.
        if (sink) {
            sink->Abort();
        }
    }

    void Run() {
        // Start on the connection's strand: nothing of it runs elsewhere from here on.
        asio::dispatch(stream.get_executor(), [self = this->shared_from_this()] {
            if constexpr (std::is_same_v<Stream, TlsStream>) {
                beast::get_lowest_layer(self->stream).expires_after(kHandshakeTimeout);
                self->stream.async_handshake(asio::ssl::stream_base::server,
                                             [self](error_code error) {
                                                 if (!error) {
                                                     self->ReadHeader();
                                                 }
                                             });
            } else {
                self->ReadHeader();
            }
        });
    }

private:
    // The header is read alone; the route then decides whether the body is read into memory
    // (Parser) or streamed to a sink (StreamParser).
    using HeaderParser = beasthttp::request_parser<beasthttp::empty_body>;
    using Parser = beasthttp::request_parser<beasthttp::string_body>;
    using StreamParser = beasthttp::request_parser<beasthttp::buffer_body>;

    static Stream MakeStream(asio::ip::tcp::socket socket,
                             const std::shared_ptr<asio::ssl::context>& context) {
        if constexpr (std::is_same_v<Stream, TlsStream>) {
            return Stream(std::move(socket), *context);
        } else {
            return Stream(std::move(socket));
        }
    }

    void ReadHeader() {
        parser.reset();
        streamParser.reset();
        streamedHead.reset();
        sink.reset();
        headerParser.emplace();
        // The body's limit depends on the route; OnHeader applies it.
        headerParser->body_limit(boost::none);
        headerParser->header_limit(limits.maxHeader);
        beast::get_lowest_layer(stream).expires_after(limits.idleTimeout);
        beasthttp::async_read_header(stream, buffer, *headerParser,
                                     [self = this->shared_from_this()](
                                         error_code error, std::size_t) { self->OnHeader(error); });
    }

    void OnHeader(error_code error) {
        if (error) {
            FailRead(error);
            return;
        }
        version = headerParser->get().version();
        if (dispatcher->Streams(headerParser->get())) {
            StartStreamedBody();
            return;
        }
        parser.emplace(std::move(*headerParser));
        headerParser.reset();
        parser->body_limit(limits.maxBody);
        const auto& request = parser->get();
        const auto length = parser->content_length();
        if (length && *length > limits.maxBody) {
            Refuse(status::payload_too_large, "request_too_large",
                   "the request body is larger than " + std::to_string(limits.maxBody) + " bytes");
            return;
        }
        if (parser->is_done()) {
            Process();
            return;
        }
        if (ExpectsContinue(request)) {
            SendContinue([self = this->shared_from_this()] { self->ReadBody(); });
            return;
        }
        ReadBody();
    }

    static bool ExpectsContinue(const RequestContext::Header& request) {
        return beast::iequals(request[beasthttp::field::expect], "100-continue");
    }

    template <class Next>
    void SendContinue(Next next) {
        auto interim = std::make_shared<beasthttp::response<beasthttp::empty_body>>(
            status::continue_, version);
        beasthttp::async_write(
            stream, *interim,
            [interim, next = std::move(next)](error_code writeError, std::size_t) mutable {
                if (!writeError) {
                    next();
                }
            });
    }

    // A streamed body: the route answers on the header (token, rate limit and injected faults
    // apply here), then its sink takes the body piece by piece.
    void StartStreamedBody() {
        streamedHead.emplace(headerParser->get().base());
        streamParser.emplace(std::move(*headerParser));
        headerParser.reset();
        streamParser->body_limit(boost::none);
        auto fault = dispatcher->TakeFault(*streamedHead);
        if (fault && fault->delay.count() > 0) {
            timer.expires_after(fault->delay);
            timer.async_wait(
                [self = this->shared_from_this(), fault = std::move(fault)](error_code error) {
                    if (!error) {
                        self->DispatchStreamed(fault);
                    }
                });
            return;
        }
        DispatchStreamed(fault);
    }

    void DispatchStreamed(const std::optional<hooks::FaultInjector::Fault>& fault) {
        streamedFault = fault;
        if (fault && fault->drop) {
            Drop();
            return;
        }
        auto start = dispatcher->DispatchHeader(*streamedHead, fault);
        if (auto* answer = std::get_if<Response>(&start)) {
            if (fault && fault->dropAnswer) {
                Drop();
                return;
            }
            if (streamParser->is_done()) {
                Write(std::move(*answer), streamedHead->keep_alive(), false);
            } else {
                // The body stays unread: the connection cannot carry another request.
                lingerAfterWrite = true;
                Write(std::move(*answer), false, false);
            }
            return;
        }
        sink = std::move(std::get<std::shared_ptr<BodySink>>(start));
        if (streamParser->is_done()) {
            FinishStreamedBody();
            return;
        }
        if (ExpectsContinue(*streamedHead)) {
            SendContinue([self = this->shared_from_this()] { self->ReadBodyPiece(); });
            return;
        }
        ReadBodyPiece();
    }

    void ReadBodyPiece() {
        if (!piece) {
            piece = std::make_unique<char[]>(kStreamPieceSize);
            // Beast reads as much as the buffer has room for: room for a whole piece means one
            // system call and one sink write per piece instead of per few kilobytes.
            buffer.reserve(kStreamPieceSize);
        }
        auto& body = streamParser->get().body();
        body.data = piece.get();
        body.size = kStreamPieceSize;
        beast::get_lowest_layer(stream).expires_after(limits.idleTimeout);
        beasthttp::async_read_some(
            stream, buffer, *streamParser,
            [self = this->shared_from_this()](error_code error, std::size_t) {
                self->OnBodyPiece(error);
            });
    }

    void OnBodyPiece(error_code error) {
        if (error == beasthttp::error::need_buffer) {
            error = {};
        }
        if (error) {
            auto dropped = std::move(sink);
            dropped->Abort();
            FailRead(error);
            return;
        }
        const std::size_t got = kStreamPieceSize - streamParser->get().body().size;
        if (got > 0) {
            if (auto refusal = sink->Write(std::span<const char>(piece.get(), got))) {
                sink.reset();
                lingerAfterWrite = true;
                Write(std::move(*refusal), false, false);
                return;
            }
        }
        if (streamParser->is_done()) {
            FinishStreamedBody();
            return;
        }
        ReadBodyPiece();
    }

    void FinishStreamedBody() {
        auto finished = std::move(sink);
        Response answer = finished->Finish();
        if (streamedFault && streamedFault->dropAnswer) {
            Drop();
            return;
        }
        Write(std::move(answer), streamedHead->keep_alive(), false);
    }

    void Drop() {
        error_code ignored;
        beast::get_lowest_layer(stream).socket().shutdown(asio::ip::tcp::socket::shutdown_both,
                                                          ignored);
        beast::get_lowest_layer(stream).close();
    }

    void ReadBody() {
        beasthttp::async_read(stream, buffer, *parser,
                              [self = this->shared_from_this()](error_code error, std::size_t) {
                                  if (error) {
                                      self->FailRead(error);
                                  } else {
                                      self->Process();
                                  }
                              });
    }

    /// A read ended in error: answer what the client got wrong, drop the connection otherwise.
    void FailRead(error_code error) {
        if (error == beasthttp::error::body_limit) {
            Refuse(status::payload_too_large, "request_too_large",
                   "the request body is larger than " + std::to_string(limits.maxBody) + " bytes");
        } else if (error == beasthttp::error::header_limit) {
            Refuse(status::request_header_fields_too_large, "invalid_request",
                   "the request header is too large");
        } else if (error.category() ==
                       beasthttp::make_error_code(beasthttp::error::bad_target).category() &&
                   error != beasthttp::error::end_of_stream &&
                   error != beasthttp::error::partial_message) {
            Refuse(status::bad_request, "invalid_request", "the request is not valid HTTP/1.1");
        } else {
            Shutdown();
        }
    }

    void Refuse(status code, std::string_view error, std::string_view description) {
        auto response = Response::Error(code, error, description);
        lingerAfterWrite = true;
        Write(std::move(response), false, false);
    }

    void Process() {
        auto fault = dispatcher->TakeFault(parser->get());
        if (fault && fault->delay.count() > 0) {
            timer.expires_after(fault->delay);
            timer.async_wait(
                [self = this->shared_from_this(), fault = std::move(fault)](error_code error) {
                    if (!error) {
                        self->Answer(fault);
                    }
                });
            return;
        }
        Answer(fault);
    }

    void Answer(const std::optional<hooks::FaultInjector::Fault>& fault) {
        if (fault && fault->drop) {
            Drop();
            return;
        }
        const auto& request = parser->get();
        Response response = dispatcher->Dispatch(request, fault);
        if (fault && fault->dropAnswer) {
            // The route has done its work; the client never learns of it.
            Drop();
            return;
        }
        if (response.Stream()) {
            StartEventStream(std::move(response));
            return;
        }
        Write(std::move(response), request.keep_alive(), request.method() == beasthttp::verb::head);
    }

    void Write(Response response, bool keepAlive, bool headOnly) {
        auto generator = [&]() -> beasthttp::message_generator {
            auto finish = [&](auto& message) -> beasthttp::message_generator {
                message.version(version);
                message.keep_alive(keepAlive);
                message.prepare_payload();
                if (headOnly) {
                    beasthttp::response<beasthttp::empty_body> head(std::move(message.base()));
                    return head;
                }
                return std::move(message);
            };
            if (response.IsFile()) {
                return finish(response.AsFile());
            }
            return finish(response.AsString());
        }();
        beast::get_lowest_layer(stream).expires_after(limits.idleTimeout);
        beast::async_write(
            stream, std::move(generator),
            [self = this->shared_from_this(), keepAlive](error_code error, std::size_t) {
                if (error) {
                    return;
                }
                if (keepAlive) {
                    self->ReadHeader();
                } else {
                    self->Shutdown();
                }
            });
    }

    void StartEventStream(Response response) {
        subscription = response.Stream();
        auto head = std::make_shared<beasthttp::response<beasthttp::empty_body>>(
            std::move(response.AsString().base()));
        head->version(version);
        head->keep_alive(true);
        head->chunked(true);
        auto serializer =
            std::make_shared<beasthttp::response_serializer<beasthttp::empty_body>>(*head);
        beast::get_lowest_layer(stream).expires_never();
        beasthttp::async_write_header(
            stream, *serializer,
            [self = this->shared_from_this(), head, serializer](error_code error, std::size_t) {
                if (error) {
                    return;
                }
                self->OnEventStreamOpen();
            });
    }

    void OnEventStreamOpen() {
        std::weak_ptr<Connection> weak = this->shared_from_this();
        auto executor = stream.get_executor();
        subscription->SetWakeUp([weak, executor] {
            asio::post(executor, [weak] {
                if (auto self = weak.lock()) {
                    self->FlushFrames();
                }
            });
        });
        // The first comment tells the client the stream is live: changes from now on arrive.
        outgoing.push_back(": connected\n\n");
        FlushFrames();
        WatchForClose();
        ScheduleKeepAlive();
    }

    void WatchForClose() {
        // A client never sends on an event stream; any read completion means it went away.
        stream.async_read_some(
            asio::buffer(closeProbe),
            [self = this->shared_from_this()](error_code, std::size_t) { self->EndEventStream(); });
    }

    void ScheduleKeepAlive() {
        timer.expires_after(limits.keepAliveComment);
        timer.async_wait(
            [weak = std::weak_ptr<Connection>(this->shared_from_this())](error_code error) {
                auto self = weak.lock();
                if (error || !self || self->closed) {
                    return;
                }
                self->outgoing.push_back(": keep-alive\n\n");
                self->FlushFrames();
                self->ScheduleKeepAlive();
            });
    }

    void FlushFrames() {
        if (closed) {
            return;
        }
        if (subscription->Overflowed()) {
            EndEventStream();
            return;
        }
        for (auto& frame : subscription->TakePending()) {
            outgoing.push_back(std::move(frame));
        }
        if (writing) {
            return;
        }
        if (outgoing.empty()) {
            if (subscription->CloseRequested()) {
                FinishEventStream();
            }
            return;
        }
        writing = true;
        chunkText.clear();
        for (const auto& frame : outgoing) {
            chunkText += frame;
        }
        outgoing.clear();
        asio::async_write(stream, beasthttp::make_chunk(asio::buffer(chunkText)),
                          [self = this->shared_from_this()](error_code error, std::size_t) {
                              self->writing = false;
                              if (error) {
                                  self->EndEventStream();
                                  return;
                              }
                              self->FlushFrames();
                          });
    }

    /// Ends the stream as a finished answer (the last chunk), so the client sees a whole reply
    /// rather than a broken one, then closes the connection.
    void FinishEventStream() {
        writing = true;
        asio::async_write(stream, beasthttp::make_chunk_last(),
                          [self = this->shared_from_this()](error_code, std::size_t) {
                              self->writing = false;
                              self->EndEventStream();
                          });
    }

    void EndEventStream() {
        if (closed) {
            return;
        }
        closed = true;
        subscription->SetWakeUp({});
        timer.cancel();
        error_code ignored;
        beast::get_lowest_layer(stream).socket().shutdown(asio::ip::tcp::socket::shutdown_both,
                                                          ignored);
        beast::get_lowest_layer(stream).close();
    }

    void Shutdown() {
        if constexpr (std::is_same_v<Stream, TlsStream>) {
            beast::get_lowest_layer(stream).expires_after(kHandshakeTimeout);
            stream.async_shutdown([self = this->shared_from_this()](error_code) {
                beast::get_lowest_layer(self->stream).close();
            });
        } else {
            error_code ignored;
            stream.socket().shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
            if (lingerAfterWrite) {
                stream.expires_after(kLingerTimeout);
                Linger();
            }
        }
    }

    void Linger() {
        lingerBuffer.resize(16 * 1024);
        stream.async_read_some(
            asio::buffer(lingerBuffer),
            [self = this->shared_from_this()](error_code error, std::size_t bytes) {
                self->lingered += bytes;
                if (!error && self->lingered < kLingerBytes) {
                    self->Linger();
                }
            });
    }

    std::shared_ptr<asio::ssl::context> tls;  // Kept for as long as the stream uses it.
    Stream stream;
    std::shared_ptr<Dispatcher> dispatcher;
    const Session::Limits limits;
    beast::flat_buffer buffer;
    std::optional<HeaderParser> headerParser;
    std::optional<Parser> parser;
    unsigned version = 11;  // Of the request being answered; 1.1 until a header is read.

    // Streamed body state: the request's header, the parser that reads its body into `piece`
    // and the route's sink.
    std::optional<StreamParser> streamParser;
    std::optional<RequestContext::Message> streamedHead;
    std::optional<hooks::FaultInjector::Fault> streamedFault;  // the streamed request's, if any
    std::shared_ptr<BodySink> sink;
    std::unique_ptr<char[]> piece;
    asio::steady_timer timer;
    bool lingerAfterWrite = false;
    std::vector<char> lingerBuffer;  // Allocated only for a connection that lingers.
    std::size_t lingered = 0;

    // Event stream state, touched only on the strand.
    std::shared_ptr<events::EventSubscription> subscription;
    std::deque<std::string> outgoing;
    std::string chunkText;
    std::array<char, 1> closeProbe{};
    bool writing = false;
    bool closed = false;
};

}  // namespace

void Session::Start(asio::ip::tcp::socket socket, std::shared_ptr<asio::ssl::context> tls,
                    std::shared_ptr<Dispatcher> dispatcher, Limits limits) {
    if (tls) {
        std::make_shared<Connection<TlsStream>>(std::move(socket), std::move(tls),
                                                std::move(dispatcher), limits)
            ->Run();
    } else {
        std::make_shared<Connection<PlainStream>>(std::move(socket), nullptr, std::move(dispatcher),
                                                  limits)
            ->Run();
    }
}

}  // namespace vantroserver::http
