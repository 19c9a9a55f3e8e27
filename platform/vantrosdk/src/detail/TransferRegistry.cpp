#include "detail/TransferRegistry.h"

#include <utility>
#include <vector>

#include "detail/UploadJob.h"

namespace vantrosdk::detail {

void TransferRegistry::Add(const vantrocommon::Guid& transferId, std::shared_ptr<UploadJob> job) {
    std::lock_guard lock(mutex);
    jobs[transferId] = std::move(job);
}

void TransferRegistry::Remove(const vantrocommon::Guid& transferId) {
    std::shared_ptr<UploadJob> removed;  // Released after the lock.
    std::lock_guard lock(mutex);
    if (const auto found = jobs.find(transferId); found != jobs.end()) {
        removed = std::move(found->second);
        jobs.erase(found);
    }
}

std::shared_ptr<UploadJob> TransferRegistry::Find(const vantrocommon::Guid& transferId) const {
    std::lock_guard lock(mutex);
    const auto found = jobs.find(transferId);
    return found == jobs.end() ? nullptr : found->second;
}

void TransferRegistry::CancelAll() {
    std::vector<std::shared_ptr<UploadJob>> running;
    {
        std::lock_guard lock(mutex);
        for (const auto& [id, job] : jobs) {
            running.push_back(job);
        }
    }
    // Each cancel removes its job from the map, so none runs under the lock.
    for (const auto& job : running) {
        job->Cancel();
    }
}

}  // namespace vantrosdk::detail
