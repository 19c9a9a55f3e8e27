// One running upload of TransferManager: creates the upload at the service, hashes the file in
// one sequential pass (each part's SHA-256 and the whole file's) and releases each part to the
// senders as its digest is ready, sends at most the configured number of parts at once with
// per-part retries, resumes from the service's list of received parts when a part's retries are
// spent, and completes with the whole file's digest.
//
// Owned by shared pointer by the registry while it runs and by its own pending continuations;
// every step runs on the SDK's executor, and the state they share is behind one mutex that is
// never held while a request is sent, a promise is completed or the progress function runs.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <kelcore/async/Future.h>
#include <kelcore/async/Promise.h>
#include <vantrocommon/Guid.h>
#include <vantrocommon/RetryPolicy.h>
#include <vantrocommon/http/CancellationToken.h>
#include <vantrocommon/http/Reply.h>
#include <vantrosdk/UploadRequest.h>
#include <vantrosdk/UploadResponse.h>

#include "detail/ClientCore.h"
#include "detail/ProgressReporter.h"
#include "detail/Sha256.h"

namespace vantrosdk::detail {

class TransferRegistry;

class UploadJob : public std::enable_shared_from_this<UploadJob> {
public:
    UploadJob(std::shared_ptr<ClientCore> core, std::weak_ptr<TransferRegistry> registry,
              vantrocommon::Guid transferId, UploadRequest request);
    ~UploadJob();
    UploadJob(const UploadJob&) = delete;
    UploadJob& operator=(const UploadJob&) = delete;

    kelcore::async::Future<std::shared_ptr<UploadResponse>> GetFuture() const {
        return promise.GetFuture();
    }

    /// Any thread. Starts the work on the executor.
    void Start();
    /// Any thread. Stops a running upload (see TransferManager::UploadCancel); false when it
    /// has ended already.
    bool Cancel();

private:
    struct Part {
        std::uint64_t offset = 0;
        std::uint64_t length = 0;
        std::string sha256;     ///< Hex; empty until hashed.
        bool held = false;      ///< The service has it (answered 200, or listed it).
        bool inFlight = false;  ///< Being sent, or waiting to be sent again.
        bool counted = false;   ///< Its bytes are in the progress already.
        std::optional<vantrocommon::RetrySchedule> schedule;
    };
    enum class Phase { Starting, Sending, Resuming, Completing, Finished };

    void Begin();
    void OnCreated(const kelcore::async::Future<vantrocommon::http::Reply>& answer);
    /// The reading lane: reads the file once, in order, feeding each block to its part's
    /// digest and handing it on to the whole-file lane; a part is released when its digest is
    /// done.
    void ReadAndHashParts();
    /// The whole-file lane: feeds the blocks, in file order, to the whole file's digest.
    void HashWholeFile();
    void PumpSenders();
    void SendPart(std::size_t index);
    void OnPartAnswered(std::size_t index,
                        const kelcore::async::Future<vantrocommon::http::Reply>& answer);
    void MaybeResume();
    void OnStatus(const kelcore::async::Future<vantrocommon::http::Reply>& answer);
    void MaybeComplete();
    void SendComplete();
    void OnCompleted(const kelcore::async::Future<vantrocommon::http::Reply>& answer);

    bool IsFinished() const;
    /// Marks the upload ended; false when it had ended already. Takes it out of the registry.
    bool MarkFinished();
    /// Ends the job that has not ended yet: no more progress, requests stopped, the service
    /// told to forget the upload. False, doing nothing, when it had already ended.
    bool Abandon();
    void Succeed(std::shared_ptr<UploadResponse> response);
    /// Ends with an unsuccessful response of the service (the upload is deleted there).
    void Refuse(std::shared_ptr<UploadResponse> response);
    void Fail(std::exception_ptr failure);
    /// Best effort: removes the service's upload, if one was made.
    void DeleteAtService(const std::string& id);

    const std::shared_ptr<ClientCore> core;
    const std::weak_ptr<TransferRegistry> registry;
    const vantrocommon::Guid transferId;
    const UploadRequest request;
    // Every request of the upload carries it, so a cancel or a failure stops them all.
    const vantrocommon::http::CancellationToken cancel;
    kelcore::async::Promise<std::shared_ptr<UploadResponse>> promise;

    // Set by Begin before anything else runs, then only read.
    int descriptor = -1;
    std::uint64_t fileSize = 0;

    ProgressReporter progress;

    // The hashing stage: two lanes over one read of the file, so that the part digests and the
    // whole file's run on two threads. A block read by the reading lane waits in `blocks` for
    // the whole-file lane, which gives the buffer back; at most kBlocksAhead are out at once.
    struct Block {
        std::vector<unsigned char> data;
        std::size_t size = 0;
        bool last = false;  ///< The file's last block.
    };
    // Touched by the reading lane only (one task at a time, each posting the next).
    Sha256 partDigest;
    std::size_t readPart = 0;
    std::uint64_t readInPart = 0;
    // Touched by the whole-file lane only.
    Sha256 wholeFile;
    // Shared by the lanes.
    std::mutex hashMutex;
    std::deque<Block> blocks;
    std::vector<std::vector<unsigned char>> spareBuffers;
    int blocksOut = 0;
    bool wholeLaneRunning = false;
    bool readerParked = false;

    mutable std::mutex mutex;
    Phase phase = Phase::Starting;
    bool finished = false;
    std::string uploadId;
    std::vector<Part> parts;
    std::deque<std::size_t> ready;  ///< Hashed parts waiting for a sender.
    int inFlight = 0;
    bool hashingDone = false;
    std::string wholeFileSha256;
    bool resumeWanted = false;
    int heldAtLastResume = -1;  ///< -1 before the first resume, which always goes ahead.
    int completeTries = 0;
    std::uint64_t acknowledged = 0;
    std::exception_ptr lastFailure;
};

}  // namespace vantrosdk::detail
