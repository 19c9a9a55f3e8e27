// The upload API for a signed-in user: create an upload in a folder (reserving its size),
// send its parts in any order and in parallel (each streamed to disk with its SHA-256 checked),
// read what arrived so far, complete it into a file asset (optionally a version in a stack)
// or abort it; and download a file asset's bytes with ranges. Uploads of other users, like
// anything else the user may not see, answer 404. Uploads left unfinished expire. Owned by the
// router's handlers; any thread.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>

#include "api/PartsInFlight.h"
#include "api/WholeFileHashes.h"
#include "http/Router.h"
#include "store/DataDirectory.h"
#include "store/Store.h"

namespace vantroserver::api {

class UploadEndpoints : public std::enable_shared_from_this<UploadEndpoints> {
public:
    UploadEndpoints(std::shared_ptr<store::Store> store, const store::DataDirectory& directory,
                    std::chrono::seconds uploadTtl);

    /// Adds the upload and download routes; they hold this object.
    void AddRoutes(http::Router& router);

    http::Response Create(const http::RequestContext& context) const;
    http::Router::StreamStart PutPart(const http::RequestContext& context) const;
    http::Response Status(const http::RequestContext& context) const;
    http::Response Complete(const http::RequestContext& context) const;
    http::Response Abort(const http::RequestContext& context) const;
    http::Response Content(const http::RequestContext& context) const;

    /// Removes expired uploads and their bytes; returns how many went. Any thread.
    std::size_t SweepExpired() const;

    /// Where the bytes of an upload in progress live.
    std::filesystem::path DataFile(std::string_view uploadId) const;

private:
    /// The upload `id` names when the signed-in user made it and it has not expired.
    std::optional<store::Upload> OwnUpload(const http::RequestContext& context) const;

    std::shared_ptr<store::Store> store;
    std::filesystem::path uploadDirectory;
    std::filesystem::path mediaDirectory;
    std::chrono::seconds uploadTtl;
    std::shared_ptr<PartsInFlight> inFlight;
    std::shared_ptr<WholeFileHashes> hashes;
};

}  // namespace vantroserver::api
