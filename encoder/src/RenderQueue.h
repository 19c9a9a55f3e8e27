// sarvex's render queue: jobs run in the order they were submitted, at most `concurrency` at a
// time. Each job belongs to the sink that submitted it (a client connection); its reports go
// there and only that sink can cancel it. A job id is unique among a sink's live jobs. Lives
// on the io_context's thread; owned by main through shared_ptr (jobs call back weakly). Sinks
// are held weakly.
//
//   auto queue = std::make_shared<RenderQueue>(io, settings, 2);
//   queue->Submit(request, connection);   // reports "queued" at once
//   queue->Cancel(connection, "job-1");
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include <sarvex/protocol/SubmitRequest.h>
#include <boost/asio/io_context.hpp>

#include "JobReportSink.h"
#include "RenderJob.h"
#include "RenderSettings.h"

namespace sarvex {

class RenderQueue : public std::enable_shared_from_this<RenderQueue> {
public:
    RenderQueue(boost::asio::io_context& io, RenderSettings settings, std::size_t concurrency);
    RenderQueue(const RenderQueue&) = delete;
    RenderQueue& operator=(const RenderQueue&) = delete;

    /// Queues a job and reports "queued" to `owner`; a job id the owner already has queued or
    /// rendering is refused with a failed report. Refused as well once the queue is shutting
    /// down.
    void Submit(protocol::SubmitRequest request, const std::shared_ptr<JobReportSink>& owner);
    /// Cancels the owner's job `jobID`: a queued one is dropped, a running one stopped. Does
    /// nothing for an unknown or finished job.
    void Cancel(const std::shared_ptr<JobReportSink>& owner, std::string_view jobID);
    /// Cancels every job of `owner` (its connection has closed).
    void CancelAllOf(const std::shared_ptr<JobReportSink>& owner);
    /// Cancels every job and refuses new ones; `whenIdle` runs once nothing renders any more.
    void Shutdown(std::function<void()> whenIdle);

    /// Whether the owner has a queued or running job with this id.
    bool HasLiveJob(const std::shared_ptr<JobReportSink>& owner, std::string_view jobID) const;
    std::size_t QueuedCount() const { return queued.size(); }
    std::size_t RunningCount() const { return running.size(); }

private:
    struct Entry {
        std::shared_ptr<RenderJob> job;
        std::weak_ptr<JobReportSink> owner;
    };

    void StartWaitingJobs();
    void OnJobFinished(const RenderJob* job);
    void CheckIdle();

    boost::asio::io_context& io;
    RenderSettings settings;
    std::size_t concurrency;
    std::deque<Entry> queued;
    std::deque<Entry> running;
    bool shuttingDown = false;
    bool starting = false;
    std::function<void()> whenIdle;
};

}  // namespace sarvex
