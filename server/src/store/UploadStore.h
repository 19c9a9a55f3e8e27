// Uploads in progress: created against a folder (and optionally a version stack to extend or
// make), their received parts, and their completion into a file asset. A pending upload
// reserves its size in its account's storage until it completes, is removed or expires. The
// bytes themselves are the caller's (see api::UploadEndpoints); this part keeps the rows. Part
// of a Store; any thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/CompletedUpload.h"
#include "store/Upload.h"
#include "store/UploadPart.h"

namespace vantroserver::store {

class StoreCore;

class UploadStore {
public:
    static constexpr std::int64_t kMiB = 1024 * 1024;
    static constexpr std::int64_t kDefaultPartSize = 8 * kMiB;
    static constexpr std::int64_t kMinPartSize = 5 * kMiB;
    static constexpr std::int64_t kMaxPartSize = 1024 * kMiB;
    static constexpr std::int64_t kMaxPartCount = 10'000;

    struct NewUpload {
        std::string userId;
        std::string folderId;
        std::string name;
        std::int64_t filesize = 0;
        std::int64_t partSize = kDefaultPartSize;
        std::string autoversionId;  ///< Empty for none.
    };

    explicit UploadStore(std::shared_ptr<StoreCore> core);

    /// Creates an upload that expires `ttl` from now. Throws StoreError: NotFound for an unknown
    /// folder; Invalid for a parent that is not a folder, a bad name, a negative size, a part
    /// size out of range, too many parts or a malformed autoversion id; Conflict when the
    /// autoversion id names an asset that is not a version stack; StorageLimit when the
    /// account's files and pending uploads would pass its limit.
    Upload Create(const NewUpload& request, std::chrono::seconds ttl);

    /// An upload that has not expired.
    std::optional<Upload> Find(std::string_view id) const;
    /// The parts received so far, by number.
    std::vector<UploadPart> Parts(std::string_view uploadId) const;
    /// Records part `number` (replacing an earlier one). Throws StoreError(NotFound) when the
    /// upload is gone or expired.
    void RecordPart(std::string_view uploadId, std::int64_t number, std::int64_t size,
                    std::string_view sha256);

    /// Forgets part `number` (its bytes are about to be rewritten); nothing when not recorded.
    void ForgetPart(std::string_view uploadId, std::int64_t number);

    /// In one transaction: makes the file asset (and its version stack when asked), releases
    /// the upload, remembers the completion (with the whole file's `sha256`) until the upload
    /// would have expired, and calls `placeBytes` with the new file before committing, so that a
    /// failure to place the bytes leaves everything as it was. Throws StoreError: NotFound when
    /// the upload or its folder is gone, Invalid when parts are missing, Conflict when the
    /// autoversion id now names something else than a version stack, StorageLimit.
    CompletedUpload Complete(std::string_view uploadId, std::string_view sha256,
                             const std::function<void(const Asset& file)>& placeBytes);

    /// The completion of `uploadId` by `userId` with the same `sha256`, while it is remembered
    /// and its file exists: what a repeated completion answers. `stackCreated` is false.
    std::optional<CompletedUpload> FindCompleted(std::string_view uploadId, std::string_view userId,
                                                 std::string_view sha256) const;

    /// Removes an upload and its parts; false when there was none.
    bool Remove(std::string_view uploadId);
    /// Removes the uploads whose time ran out, and the completions remembered as long; returns
    /// the uploads' ids (their bytes are the caller's).
    std::vector<std::string> RemoveExpired();

private:
    std::shared_ptr<StoreCore> core;
};

}  // namespace vantroserver::store
