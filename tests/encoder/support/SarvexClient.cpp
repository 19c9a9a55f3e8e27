#include "encoder/support/SarvexClient.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace sarvextest {
namespace {

int Milliseconds(Deadline deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    return left.count() < 0 ? 0 : static_cast<int>(left.count());
}

}  // namespace

SarvexClient::SarvexClient(const std::filesystem::path& socketPath) {
    fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const auto path = socketPath.string();
    if (path.size() >= sizeof(address.sun_path))
        throw std::runtime_error("socket path too long: " + path);
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        const auto why = std::string(std::generic_category().message(errno));
        ::close(fd);
        fd = -1;
        throw std::runtime_error("cannot connect to " + path + ": " + why);
    }
}

SarvexClient::~SarvexClient() {
    Close();
}

void SarvexClient::Close() {
    if (fd >= 0)
        ::close(fd);
    fd = -1;
}

void SarvexClient::Send(const sarvex::protocol::ClientMessage& message) {
    SendRaw(sarvex::protocol::EncodeLine(message));
}

void SarvexClient::SendRaw(const std::string& line) {
    const auto text = line + "\n";
    std::size_t sent = 0;
    while (sent < text.size()) {
        const auto written = ::send(fd, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (written < 0) {
            if (errno == EINTR)
                continue;
            throw std::runtime_error(std::string("send failed: ") +
                                     std::generic_category().message(errno));
        }
        sent += static_cast<std::size_t>(written);
    }
}

std::optional<sarvex::protocol::JobReport> SarvexClient::NextReport(Deadline deadline) {
    for (;;) {
        if (const auto newline = pending.find('\n'); newline != std::string::npos) {
            const auto line = pending.substr(0, newline);
            pending.erase(0, newline + 1);
            return sarvex::protocol::DecodeReportLine(line);
        }
        if (fd < 0)
            return std::nullopt;
        pollfd ready{fd, POLLIN, 0};
        const int polled = ::poll(&ready, 1, Milliseconds(deadline));
        if (polled < 0 && errno == EINTR)
            continue;
        if (polled <= 0)
            return std::nullopt;
        std::array<char, 4096> chunk{};
        const auto length = ::recv(fd, chunk.data(), chunk.size(), 0);
        if (length <= 0)
            return std::nullopt;
        pending.append(chunk.data(), static_cast<std::size_t>(length));
    }
}

std::optional<sarvex::protocol::JobReport> SarvexClient::NextReportOf(const std::string& jobID,
                                                                      Deadline deadline) {
    for (auto held = heldBack.begin(); held != heldBack.end(); ++held) {
        if (held->jobID == jobID) {
            auto report = *held;
            heldBack.erase(held);
            return report;
        }
    }
    while (auto report = NextReport(deadline)) {
        if (report->jobID == jobID)
            return report;
        heldBack.push_back(*report);
    }
    return std::nullopt;
}

std::vector<sarvex::protocol::JobReport> SarvexClient::ReportsUntilFinal(const std::string& jobID,
                                                                         Deadline deadline) {
    return ReportsUntil(
        jobID,
        [](const sarvex::protocol::JobReport& report) {
            return sarvex::protocol::IsFinal(report.status);
        },
        deadline);
}

}  // namespace sarvextest
