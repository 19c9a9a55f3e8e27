// The uploads of one client that are still running, by transfer id, so that UploadCancel can
// find them. An upload removes itself when it ends. Owned by the client's core and observed
// weakly by the uploads; any thread.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

#include <vantrocommon/Guid.h>

namespace vantrosdk::detail {

class UploadJob;

class TransferRegistry {
public:
    void Add(const vantrocommon::Guid& transferId, std::shared_ptr<UploadJob> job);
    void Remove(const vantrocommon::Guid& transferId);
    /// Null when no upload with that id is running.
    std::shared_ptr<UploadJob> Find(const vantrocommon::Guid& transferId) const;
    /// Cancels every running upload (their futures fail with kResultCancelled).
    void CancelAll();

private:
    mutable std::mutex mutex;
    std::unordered_map<vantrocommon::Guid, std::shared_ptr<UploadJob>> jobs;
};

}  // namespace vantrosdk::detail
