#include "LoopbackListener.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <boost/url/parse.hpp>

#include <cerrno>
#include <string_view>
#include <vector>

#include <kelcore/config/kel_exception.h>
#include <kelcore/debug/Trace.h>

#include <vantroauth/ResultCodes.h>

namespace vantroauth {

namespace {

constexpr std::size_t kMaxHead = 16 * 1024;
constexpr std::size_t kMaxConnections = 32;
constexpr int kSendWaitMilliseconds = 2000;

constexpr std::string_view kSignedInPage =
    "<!DOCTYPE html><html><head><meta charset=\"utf-8\"><title>vantrokelui</title></head>"
    "<body><h1>Signed in</h1><p>You can close this window and return to the application.</p>"
    "</body></html>\n";
constexpr std::string_view kFailedPage =
    "<!DOCTYPE html><html><head><meta charset=\"utf-8\"><title>vantrokelui</title></head>"
    "<body><h1>Sign-in failed</h1><p>Return to the application and try again.</p>"
    "</body></html>\n";
constexpr std::string_view kNotFoundPage =
    "<!DOCTYPE html><html><head><meta charset=\"utf-8\"><title>Not found</title></head>"
    "<body><p>Not found.</p></body></html>\n";

void Trace(std::string_view text) {
    kelcore::debug::Trace("vantroauth", 5, text);
}

[[noreturn]] void FailToListen(const char* what) {
    throw kelcore::config::kel_exception(
        std::string("cannot listen on 127.0.0.1 for the sign-in redirect: ") + what + " failed",
        kResultLoginFailed);
}

// Sends the whole answer; the socket is non-blocking, so a full buffer is waited for a little.
void SendAll(int fd, std::string_view data) {
    while (!data.empty()) {
        const ssize_t sent = ::send(fd, data.data(), data.size(), MSG_NOSIGNAL);
        if (sent > 0) {
            data.remove_prefix(static_cast<std::size_t>(sent));
            continue;
        }
        if (sent < 0 && errno == EINTR) {
            continue;
        }
        if (sent < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            pollfd waitFor{fd, POLLOUT, 0};
            if (::poll(&waitFor, 1, kSendWaitMilliseconds) > 0) {
                continue;
            }
        }
        return;  // the browser went away; nothing more to tell it
    }
}

void SendPage(int fd, std::string_view status, std::string_view page) {
    std::string answer = "HTTP/1.1 ";
    answer += status;
    answer +=
        "\r\nContent-Type: text/html; charset=utf-8\r\nCache-Control: no-store\r\n"
        "Connection: close\r\nContent-Length: ";
    answer += std::to_string(page.size());
    answer += "\r\n\r\n";
    answer += page;
    SendAll(fd, answer);
}

struct Connection {
    int fd = -1;
    std::string head;
};

}  // namespace

LoopbackListener::LoopbackListener(std::string path, RedirectHandler handler)
    : path(std::move(path)), handler(std::move(handler)) {}

std::shared_ptr<LoopbackListener> LoopbackListener::Start(std::string path,
                                                          RedirectHandler handler) {
    std::shared_ptr<LoopbackListener> listener(
        new LoopbackListener(std::move(path), std::move(handler)));
    listener->listenFd = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (listener->listenFd < 0) {
        FailToListen("socket");
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    if (::bind(listener->listenFd, reinterpret_cast<const sockaddr*>(&address), sizeof address) !=
        0) {
        FailToListen("bind");
    }
    if (::listen(listener->listenFd, 16) != 0) {
        FailToListen("listen");
    }
    socklen_t length = sizeof address;
    if (::getsockname(listener->listenFd, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        FailToListen("getsockname");
    }
    listener->port = ntohs(address.sin_port);
    if (::pipe2(listener->wakeFds, O_CLOEXEC | O_NONBLOCK) != 0) {
        FailToListen("pipe");
    }
    // The thread holds the listener until it ends, so Run never outlives its object.
    listener->thread = std::thread([listener] { listener->Run(); });
    Trace("listening for the sign-in redirect on 127.0.0.1:" + std::to_string(listener->port));
    return listener;
}

LoopbackListener::~LoopbackListener() {
    if (thread.joinable()) {
        if (thread.get_id() == std::this_thread::get_id()) {
            thread.detach();  // Run has returned: this is the end of the thread's own closure
        } else {
            Stop();
        }
    }
    for (int fd : {listenFd, wakeFds[0], wakeFds[1]}) {
        if (fd >= 0) {
            ::close(fd);
        }
    }
}

void LoopbackListener::Stop() {
    std::lock_guard lock(stopMutex);
    if (wakeFds[1] >= 0) {
        const char byte = 1;
        [[maybe_unused]] const ssize_t ignored = ::write(wakeFds[1], &byte, 1);
    }
    if (thread.joinable() && thread.get_id() != std::this_thread::get_id()) {
        thread.join();
    }
}

void LoopbackListener::Run() {
    std::vector<Connection> connections;
    bool answered = false;
    while (!answered) {
        std::vector<pollfd> polled;
        polled.push_back({wakeFds[0], POLLIN, 0});
        polled.push_back({listenFd, POLLIN, 0});
        for (const auto& connection : connections) {
            polled.push_back({connection.fd, POLLIN, 0});
        }
        if (::poll(polled.data(), polled.size(), -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            break;
        }
        if (polled[0].revents != 0) {
            break;  // Stop
        }
        if (polled[1].revents & POLLIN) {
            for (;;) {
                const int fd = ::accept4(listenFd, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
                if (fd < 0) {
                    break;
                }
                if (connections.size() >= kMaxConnections) {
                    ::close(fd);  // a browser opens a few spare connections, never this many
                    continue;
                }
                connections.push_back({fd, {}});
            }
        }
        // Connections accepted just now were not polled; their turn comes in the next round.
        std::vector<Connection> kept;
        for (std::size_t i = 0; i < connections.size(); ++i) {
            auto& connection = connections[i];
            const bool polledNow = i + 2 < polled.size() && polled[i + 2].fd == connection.fd;
            if (answered || !polledNow || polled[i + 2].revents == 0) {
                kept.push_back(std::move(connection));
                continue;
            }
            char buffer[4096];
            const ssize_t got = ::recv(connection.fd, buffer, sizeof buffer, 0);
            if (got < 0 && (errno == EAGAIN || errno == EINTR)) {
                kept.push_back(std::move(connection));
                continue;
            }
            if (got <= 0) {
                ::close(connection.fd);
                continue;
            }
            connection.head.append(buffer, static_cast<std::size_t>(got));
            const auto end = connection.head.find("\r\n\r\n");
            if (end == std::string::npos) {
                if (connection.head.size() > kMaxHead) {
                    SendPage(connection.fd, "431 Request Header Fields Too Large", kNotFoundPage);
                    ::close(connection.fd);
                } else {
                    kept.push_back(std::move(connection));
                }
                continue;
            }
            answered = Answer(connection.fd, connection.head.substr(0, end));
            ::close(connection.fd);
        }
        connections = std::move(kept);
    }
    for (const auto& connection : connections) {
        ::close(connection.fd);
    }
    // Closed here rather than in the destructor: once Stop has joined, nothing answers on the
    // port any more, even while someone still holds the object.
    ::close(listenFd);
    listenFd = -1;
    Trace("the sign-in redirect listener closed");
}

bool LoopbackListener::Answer(int fd, const std::string& head) {
    const std::string_view requestLine = std::string_view(head).substr(0, head.find("\r\n"));
    const auto firstSpace = requestLine.find(' ');
    const auto secondSpace = requestLine.find(' ', firstSpace + 1);
    if (firstSpace == std::string_view::npos || secondSpace == std::string_view::npos) {
        SendPage(fd, "400 Bad Request", kNotFoundPage);
        return false;
    }
    const std::string_view method = requestLine.substr(0, firstSpace);
    // Boost.URL 1.81 reads up to a NUL whatever the view's length: the target gets a string of
    // its own.
    const std::string target(requestLine.substr(firstSpace + 1, secondSpace - firstSpace - 1));
    const auto url = boost::urls::parse_origin_form(target);
    if (!url) {
        SendPage(fd, "400 Bad Request", kNotFoundPage);
        return false;
    }
    if (url->encoded_path() != path) {
        SendPage(fd, "404 Not Found", kNotFoundPage);  // a favicon, or anything else
        return false;
    }
    if (method != "GET") {
        SendPage(fd, "405 Method Not Allowed", kNotFoundPage);
        return false;
    }
    Query query;
    for (const auto& param : url->params()) {
        if (param.has_value) {
            query.emplace(param.key, param.value);
        }
    }
    Trace("the browser came back to the sign-in redirect");
    bool accepted = false;
    try {
        accepted = handler(query);
    } catch (...) {
        accepted = false;
    }
    SendPage(fd, "200 OK", accepted ? kSignedInPage : kFailedPage);
    return true;
}

}  // namespace vantroauth
