#include "ClientConnection.h"

#include <stdexcept>
#include <utility>
#include <variant>

#include <sarvex/protocol/Wire.h>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>
#include <boost/json.hpp>

namespace sarvex {
namespace {

namespace asio = boost::asio;
using protocol::JobReport;
using protocol::JobStatus;

// A submit is a few kilobytes even for long sequences; a line this long is a broken client.
constexpr std::size_t kLongestLine = 1 << 20;

// The job a malformed line was about, when it says so readably.
std::string JobNamedIn(std::string_view line) {
    boost::system::error_code error;
    const auto value = boost::json::parse(line, error);
    if (error || !value.is_object())
        return {};
    const auto* job = value.get_object().if_contains("job");
    return job && job->is_string() ? std::string(job->get_string()) : std::string();
}

}  // namespace

ClientConnection::ClientConnection(asio::local::stream_protocol::socket socket,
                                   std::weak_ptr<RenderQueue> queue)
    : socket(std::move(socket)), queue(std::move(queue)) {}

void ClientConnection::Start() {
    ReadLine();
}

void ClientConnection::ReadLine() {
    asio::async_read_until(
        socket, asio::dynamic_buffer(inbox, kLongestLine), '\n',
        [self = shared_from_this()](const boost::system::error_code& error, std::size_t length) {
            if (error == asio::error::not_found) {
                self->Report(JobReport{"", JobStatus::Failed, 0.0, -1.0,
                                       "a request line is longer than 1 MiB"});
                self->CloseAfterWrites();
                return;
            }
            if (error) {
                self->Close();
                return;
            }
            std::string line = self->inbox.substr(0, length - 1);
            self->inbox.erase(0, length);
            if (!line.empty() && line.back() == '\r')
                line.pop_back();
            self->HandleLine(line);
            if (!self->closed && !self->closing)
                self->ReadLine();
        });
}

void ClientConnection::HandleLine(std::string_view line) {
    if (line.find_first_not_of(" \t") == std::string_view::npos)
        return;
    auto renderQueue = queue.lock();
    if (!renderQueue)
        return;
    const std::shared_ptr<JobReportSink> self = shared_from_this();
    try {
        auto message = protocol::DecodeClientLine(line);
        if (auto* submit = std::get_if<protocol::SubmitRequest>(&message)) {
            renderQueue->Submit(std::move(*submit), self);
        } else {
            renderQueue->Cancel(self, std::get<protocol::CancelRequest>(message).jobID);
        }
    } catch (const std::invalid_argument& fault) {
        // Name the job when the line does, unless that would read as the end of a live job.
        auto jobID = JobNamedIn(line);
        if (renderQueue->HasLiveJob(self, jobID))
            jobID.clear();
        Report(JobReport{jobID, JobStatus::Failed, 0.0, -1.0,
                         std::string("malformed request: ") + fault.what()});
    }
}

void ClientConnection::Report(const JobReport& report) {
    if (closed)
        return;
    outbox.push_back(protocol::EncodeLine(report) + "\n");
    WriteNext();
}

void ClientConnection::WriteNext() {
    if (writing || closed)
        return;
    if (outbox.empty()) {
        if (closing)
            Close();
        return;
    }
    writing = true;
    asio::async_write(
        socket, asio::buffer(outbox.front()),
        [self = shared_from_this()](const boost::system::error_code& error, std::size_t) {
            self->writing = false;
            if (error) {
                self->Close();
                return;
            }
            self->outbox.pop_front();
            self->WriteNext();
        });
}

void ClientConnection::CloseAfterWrites() {
    closing = true;
    if (!writing)
        WriteNext();
}

void ClientConnection::Close() {
    if (closed)
        return;
    closed = true;
    outbox.clear();
    if (auto renderQueue = queue.lock())
        renderQueue->CancelAllOf(shared_from_this());
    boost::system::error_code ignored;
    socket.shutdown(asio::local::stream_protocol::socket::shutdown_both, ignored);
    socket.close(ignored);
}

}  // namespace sarvex
