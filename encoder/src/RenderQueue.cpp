#include "RenderQueue.h"

#include <algorithm>
#include <utility>

namespace sarvex {
namespace {

using protocol::JobReport;
using protocol::JobStatus;

// Owners compare by their control block, which stays distinct while any job still refers to
// it, so a new connection at a freed address is never taken for a closed one.
bool SameOwner(const std::weak_ptr<JobReportSink>& a, const std::shared_ptr<JobReportSink>& b) {
    return !a.owner_before(b) && !b.owner_before(a);
}

void Tell(const std::shared_ptr<JobReportSink>& owner, const JobReport& report) {
    if (owner)
        owner->Report(report);
}

}  // namespace

RenderQueue::RenderQueue(boost::asio::io_context& io, RenderSettings settings,
                         std::size_t concurrency)
    : io(io), settings(std::move(settings)), concurrency(std::max<std::size_t>(1, concurrency)) {}

void RenderQueue::Submit(protocol::SubmitRequest request,
                         const std::shared_ptr<JobReportSink>& owner) {
    const auto jobID = request.jobID;
    if (shuttingDown) {
        Tell(owner, {jobID, JobStatus::Failed, 0.0, -1.0, "sarvex is shutting down"});
        return;
    }
    if (HasLiveJob(owner, jobID)) {
        Tell(owner, {jobID, JobStatus::Failed, 0.0, -1.0,
                     "job " + jobID + " is already queued or encoding"});
        return;
    }
    std::weak_ptr<JobReportSink> weakOwner = owner;
    auto job = std::make_shared<RenderJob>(
        io, std::move(request), settings,
        [weakOwner](const JobReport& report) { Tell(weakOwner.lock(), report); },
        [weakQueue = weak_from_this()](RenderJob& finished) {
            if (auto queue = weakQueue.lock())
                queue->OnJobFinished(&finished);
        });
    queued.push_back(Entry{std::move(job), weakOwner});
    Tell(owner, {jobID, JobStatus::Queued, 0.0, -1.0, {}});
    StartWaitingJobs();
}

void RenderQueue::StartWaitingJobs() {
    // A job that fails at once finishes inside Start() and lands here again; the outer loop
    // carries on from where the state then is.
    if (starting)
        return;
    starting = true;
    while (!shuttingDown && running.size() < concurrency && !queued.empty()) {
        auto entry = std::move(queued.front());
        queued.pop_front();
        auto job = entry.job;
        running.push_back(std::move(entry));
        job->Start();
    }
    starting = false;
}

void RenderQueue::Cancel(const std::shared_ptr<JobReportSink>& owner, std::string_view jobID) {
    const auto matches = [&](const Entry& entry) {
        return SameOwner(entry.owner, owner) && entry.job->ID() == jobID;
    };
    if (auto found = std::find_if(queued.begin(), queued.end(), matches); found != queued.end()) {
        auto job = found->job;
        queued.erase(found);
        job->Cancel();
        return;
    }
    if (auto found = std::find_if(running.begin(), running.end(), matches);
        found != running.end()) {
        auto job = found->job;
        job->Cancel();
    }
}

void RenderQueue::CancelAllOf(const std::shared_ptr<JobReportSink>& owner) {
    std::vector<std::shared_ptr<RenderJob>> jobs;
    for (auto* list : {&queued, &running}) {
        for (const auto& entry : *list) {
            if (SameOwner(entry.owner, owner))
                jobs.push_back(entry.job);
        }
    }
    std::erase_if(queued, [&](const Entry& entry) { return SameOwner(entry.owner, owner); });
    for (const auto& job : jobs)
        job->Cancel();
}

void RenderQueue::Shutdown(std::function<void()> idle) {
    shuttingDown = true;
    whenIdle = std::move(idle);
    auto waiting = std::move(queued);
    queued.clear();
    for (const auto& entry : waiting)
        entry.job->Cancel();
    std::vector<std::shared_ptr<RenderJob>> jobs;
    for (const auto& entry : running)
        jobs.push_back(entry.job);
    for (const auto& job : jobs)
        job->Cancel();
    CheckIdle();
}

bool RenderQueue::HasLiveJob(const std::shared_ptr<JobReportSink>& owner,
                             std::string_view jobID) const {
    const auto matches = [&](const Entry& entry) {
        return SameOwner(entry.owner, owner) && entry.job->ID() == jobID && !entry.job->Finished();
    };
    return std::any_of(queued.begin(), queued.end(), matches) ||
           std::any_of(running.begin(), running.end(), matches);
}

void RenderQueue::OnJobFinished(const RenderJob* job) {
    std::erase_if(running, [job](const Entry& entry) { return entry.job.get() == job; });
    StartWaitingJobs();
    CheckIdle();
}

void RenderQueue::CheckIdle() {
    if (!shuttingDown || !running.empty() || !whenIdle)
        return;
    auto idle = std::move(whenIdle);
    whenIdle = nullptr;
    idle();
}

}  // namespace sarvex
