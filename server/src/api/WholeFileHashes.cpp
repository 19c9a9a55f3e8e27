#include "api/WholeFileHashes.h"

#include <boost/asio/post.hpp>

namespace vantroserver::api {

WholeFileHashes::WholeFileHashes() = default;

WholeFileHashes::~WholeFileHashes() {
    {
        std::lock_guard lock(mutex);
        for (const auto& [id, hash] : hashes) {
            hash->Stop();
        }
    }
    worker.join();
}

void WholeFileHashes::Begin(const store::Upload& upload, const std::filesystem::path& dataFile) {
    auto executor = worker.get_executor();
    auto hash = std::make_shared<WholeFileHash>(
        upload, dataFile,
        [executor](std::function<void()> task) { boost::asio::post(executor, std::move(task)); });
    std::lock_guard lock(mutex);
    hashes[upload.id] = std::move(hash);
}

std::shared_ptr<WholeFileHash> WholeFileHashes::Find(const std::string& uploadId) const {
    std::lock_guard lock(mutex);
    const auto found = hashes.find(uploadId);
    return found == hashes.end() ? nullptr : found->second;
}

void WholeFileHashes::PartStarting(const std::string& uploadId, std::int64_t part) {
    if (const auto hash = Find(uploadId)) {
        hash->PartStarting(part);
    }
}

void WholeFileHashes::PartRecorded(const std::string& uploadId, std::int64_t part) {
    if (const auto hash = Find(uploadId)) {
        hash->PartRecorded(part);
    }
}

std::string WholeFileHashes::Finish(const store::Upload& upload,
                                    const std::filesystem::path& dataFile) {
    std::shared_ptr<WholeFileHash> hash;
    {
        std::lock_guard lock(mutex);
        const auto found = hashes.find(upload.id);
        if (found != hashes.end()) {
            hash = std::move(found->second);
            hashes.erase(found);
        }
    }
    if (!hash) {
        // Nothing was folded (the server restarted since the upload began): all of it is left.
        hash = std::make_shared<WholeFileHash>(upload, dataFile, nullptr);
    }
    return hash->Finish();
}

void WholeFileHashes::Drop(const std::string& uploadId) {
    std::shared_ptr<WholeFileHash> hash;
    {
        std::lock_guard lock(mutex);
        const auto found = hashes.find(uploadId);
        if (found == hashes.end()) {
            return;
        }
        hash = std::move(found->second);
        hashes.erase(found);
    }
    hash->Stop();
}

}  // namespace vantroserver::api
