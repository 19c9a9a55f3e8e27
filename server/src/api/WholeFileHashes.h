// The running whole-file digests of the uploads in progress (see WholeFileHash), by upload id,
// and the one background thread their folds run on, so that hashing never holds up a
// connection's answer. Entries are made when an upload is created and dropped when it
// completes, is aborted or expires; after a restart there are none, and completion hashes
// the whole file. Owned by UploadEndpoints (shared with the part sinks); any thread.
#pragma once

#include <boost/asio/thread_pool.hpp>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "api/WholeFileHash.h"
#include "store/Upload.h"

namespace vantroserver::api {

class WholeFileHashes {
public:
    WholeFileHashes();
    /// Stops the folds under way (at their next block) and joins the thread.
    ~WholeFileHashes();
    WholeFileHashes(const WholeFileHashes&) = delete;
    WholeFileHashes& operator=(const WholeFileHashes&) = delete;

    /// Starts a running digest for a new upload whose bytes live in `dataFile`.
    void Begin(const store::Upload& upload, const std::filesystem::path& dataFile);
    /// Passed on to the upload's digest; do nothing for an upload without one.
    void PartStarting(const std::string& uploadId, std::int64_t part);
    void PartRecorded(const std::string& uploadId, std::int64_t part);
    /// The SHA-256 of the upload's data file as hex, using (and dropping) its running digest
    /// when there is one, else reading the whole file. Throws std::runtime_error when the file
    /// cannot be read.
    std::string Finish(const store::Upload& upload, const std::filesystem::path& dataFile);
    /// Forgets the upload's digest, stopping its fold.
    void Drop(const std::string& uploadId);

private:
    std::shared_ptr<WholeFileHash> Find(const std::string& uploadId) const;

    boost::asio::thread_pool worker{1};
    mutable std::mutex mutex;
    std::map<std::string, std::shared_ptr<WholeFileHash>, std::less<>> hashes;
};

}  // namespace vantroserver::api
