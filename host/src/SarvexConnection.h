// One client connection to sarvex over its Unix socket: sends submit and cancel lines and reads
// sarvex's report lines on a reader thread of its own, handing each report (and the end of the
// connection) to the callbacks given at Connect.
//
// Owned by a shared_ptr (the host's encoder functions hold it). Send is any thread (lines are
// written whole under a mutex); the callbacks run on the reader thread and must not destroy the
// connection. The destructor shuts the socket down and joins the reader.
//
//   auto connection = SarvexConnection::Connect(path, onReport, onClosed);   // throws
//   connection->Send(sarvex::protocol::CancelRequest{"job-1"});
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

#include <sarvex/protocol/Wire.h>

namespace vantroshare {

/// sarvex cannot be reached or the connection broke; the text says where and why.
class SarvexError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class SarvexConnection {
public:
    using ReportCallback = std::function<void(const sarvex::protocol::JobReport&)>;
    /// Called once when sarvex closes the connection or it fails, with the reason.
    using ClosedCallback = std::function<void(const std::string& reason)>;

    /// Connects and starts reading. Throws SarvexError when nothing answers at `socketPath`.
    static std::shared_ptr<SarvexConnection> Connect(const std::string& socketPath,
                                                     ReportCallback onReport,
                                                     ClosedCallback onClosed);
    ~SarvexConnection();
    SarvexConnection(const SarvexConnection&) = delete;
    SarvexConnection& operator=(const SarvexConnection&) = delete;

    /// Writes one request line. False when the connection is gone. Any thread.
    bool Send(const sarvex::protocol::ClientMessage& message);
    /// Whether the connection still stands. Any thread.
    bool IsOpen() const { return open.load(); }

private:
    SarvexConnection(int fd, ReportCallback onReport, ClosedCallback onClosed);
    void ReadLoop();

    const int fd;
    ReportCallback onReport;
    ClosedCallback onClosed;
    std::atomic<bool> open{true};
    std::mutex sendMutex;
    std::thread reader;
};

}  // namespace vantroshare
