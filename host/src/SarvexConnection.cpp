#include "SarvexConnection.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace vantroshare {

std::shared_ptr<SarvexConnection> SarvexConnection::Connect(const std::string& socketPath,
                                                            ReportCallback onReport,
                                                            ClosedCallback onClosed) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (socketPath.empty() || socketPath.size() >= sizeof(address.sun_path)) {
        throw SarvexError("sarvex socket path is empty or too long: " + socketPath);
    }
    std::memcpy(address.sun_path, socketPath.c_str(), socketPath.size() + 1);
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        throw SarvexError(std::string("cannot make a socket: ") + std::strerror(errno));
    }
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        const std::string reason = std::strerror(errno);
        ::close(fd);
        throw SarvexError("sarvex does not answer at " + socketPath + ": " + reason);
    }
    return std::shared_ptr<SarvexConnection>(
        new SarvexConnection(fd, std::move(onReport), std::move(onClosed)));
}

SarvexConnection::SarvexConnection(int fd, ReportCallback onReport, ClosedCallback onClosed)
    : fd(fd), onReport(std::move(onReport)), onClosed(std::move(onClosed)) {
    reader = std::thread([this] { ReadLoop(); });
}

SarvexConnection::~SarvexConnection() {
    // Wakes the reader's blocking read; it then sees the end and leaves.
    ::shutdown(fd, SHUT_RDWR);
    if (reader.joinable()) {
        reader.join();
    }
    ::close(fd);
}

bool SarvexConnection::Send(const sarvex::protocol::ClientMessage& message) {
    const std::string line = sarvex::protocol::EncodeLine(message) + "\n";
    const std::lock_guard lock(sendMutex);
    if (!open.load()) {
        return false;
    }
    const char* data = line.data();
    std::size_t left = line.size();
    while (left > 0) {
        const ssize_t sent = ::send(fd, data, left, MSG_NOSIGNAL);
        if (sent < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += sent;
        left -= static_cast<std::size_t>(sent);
    }
    return true;
}

void SarvexConnection::ReadLoop() {
    std::string pending;
    char buffer[4096];
    std::string reason = "sarvex closed the connection";
    for (;;) {
        const ssize_t count = ::read(fd, buffer, sizeof(buffer));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            reason = std::string("the connection to sarvex failed: ") + std::strerror(errno);
            break;
        }
        if (count == 0) {
            break;
        }
        pending.append(buffer, static_cast<std::size_t>(count));
        for (std::size_t end = pending.find('\n'); end != std::string::npos;
             end = pending.find('\n')) {
            const std::string line = pending.substr(0, end);
            pending.erase(0, end + 1);
            if (line.empty()) {
                continue;
            }
            try {
                onReport(sarvex::protocol::DecodeReportLine(line));
            } catch (const std::invalid_argument& error) {
                // A line we cannot read names no job we could fail; say so and go on.
                onReport(sarvex::protocol::JobReport{
                    "", sarvex::protocol::JobStatus::Failed, 0.0, -1.0,
                    std::string("unreadable report from sarvex: ") + error.what()});
            }
        }
    }
    open.store(false);
    onClosed(reason);
}

}  // namespace vantroshare
