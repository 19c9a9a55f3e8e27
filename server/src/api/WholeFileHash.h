// The SHA-256 of one upload's whole file, computed while its parts arrive so that completion
// only hashes what is left. Parts are folded in file order: once the part at the frontier (the
// next one not yet hashed) is recorded, a fold reads it and every following recorded part back
// from the data file (usually still in the page cache). A fold runs through the `post` function
// given at construction (a background worker), never on the caller's thread, and at most one
// runs at a time. Re-sending a part that was already hashed, or is being hashed, spoils the
// running digest: completion then hashes the whole file from the start. Owned by
// WholeFileHashes (shared with the folds it posts); any thread.
//
//   auto hash = std::make_shared<WholeFileHash>(upload, dataFile, post);
//   hash->PartStarting(2); ... hash->PartRecorded(2);   // per part, as the sink goes
//   std::string hex = hash->Finish();                    // once every part is recorded
#pragma once

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "security/Sha256Stream.h"
#include "store/Upload.h"

namespace vantroserver::api {

class WholeFileHash : public std::enable_shared_from_this<WholeFileHash> {
public:
    /// Runs a task later on some other thread.
    using Post = std::function<void(std::function<void()>)>;

    WholeFileHash(const store::Upload& upload, std::filesystem::path dataFile, Post post);

    /// A part's bytes are about to be overwritten. Any thread.
    void PartStarting(std::int64_t part);
    /// A part's bytes are on disk and checked; posts a fold when it is at the frontier and no
    /// fold is under way. Does nothing once Finish() or Stop() was called. Any thread.
    void PartRecorded(std::int64_t part);
    /// The digest of the data file as 64 lower-case hex digits: waits for a fold in progress
    /// to stop at its next block, then hashes the bytes after the frontier (all of them when
    /// the running digest was spoiled). Call once, when no part is being written. Throws
    /// std::runtime_error when the file cannot be read. Any thread.
    std::string Finish();
    /// Stops folding for good (the upload went). Any thread.
    void Stop();

    /// How many bytes from the start have been folded in so far. Any thread.
    std::uint64_t FoldedBytes() const;

private:
    /// Folds parts at the frontier while they are recorded; the posted task.
    void Fold();
    /// Feeds `size` bytes from `offset` into `into`, stopping early (between blocks) when
    /// `checkStop` and Finish() or Stop() was called; how many went in. Throws std::runtime_error
    /// when the file cannot be read.
    std::uint64_t HashRange(security::Sha256Stream& into, std::uint64_t offset, std::uint64_t size,
                            bool checkStop);

    const store::Upload layout;
    const std::filesystem::path dataFile;
    const Post post;

    mutable std::mutex mutex;
    std::condition_variable foldStopped;
    /// Touched without the lock only by the one fold that is reading (`reading`), or by
    /// Finish() once no fold reads any more.
    security::Sha256Stream hash;
    std::int64_t frontier = 1;
    std::uint64_t foldedBytes = 0;
    /// Recorded parts after the frontier (or at it), not yet folded.
    std::set<std::int64_t> recorded;
    bool spoiled = false;
    bool stopped = false;
    bool foldPosted = false;
    /// The part a fold is reading now, 0 when none.
    std::int64_t reading = 0;
};

}  // namespace vantroserver::api
