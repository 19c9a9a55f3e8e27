// One client of `sarvex serve` on the Unix socket: reads its JSON lines (submit, cancel), hands
// them to the render queue and writes the reports of its jobs back, in order. A line that
// cannot be read is answered with a failed report and the connection stays open. When the
// client goes, its jobs are cancelled: no one is left to take their files. Lives on the
// io_context's thread; its pending reads and writes own it (shared_ptr), the server and the
// queue only observe it.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include <boost/asio/local/stream_protocol.hpp>

#include "JobReportSink.h"
#include "RenderQueue.h"

namespace sarvex {

class ClientConnection : public JobReportSink,
                         public std::enable_shared_from_this<ClientConnection> {
public:
    ClientConnection(boost::asio::local::stream_protocol::socket socket,
                     std::weak_ptr<RenderQueue> queue);

    /// Starts reading requests.
    void Start();
    /// Queues a report line for the client. Does nothing once the connection is closed.
    void Report(const protocol::JobReport& report) override;
    /// Ends the connection once the reports already queued are written (sarvex is exiting).
    void CloseAfterWrites();

private:
    void ReadLine();
    void HandleLine(std::string_view line);
    void WriteNext();
    void Close();

    boost::asio::local::stream_protocol::socket socket;
    std::weak_ptr<RenderQueue> queue;
    std::string inbox;
    std::deque<std::string> outbox;
    bool writing = false;
    bool closing = false;
    bool closed = false;
};

}  // namespace sarvex
