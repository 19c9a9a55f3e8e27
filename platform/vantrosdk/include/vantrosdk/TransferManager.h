// Uploads files into folders in parallel parts, and cancels them. Held by VantroClient and by
// shared pointer by callers; each running upload keeps what it needs alive until it ends. Any
// thread.
//
// An upload stats the file, creates the upload in the folder, and sends its parts (at most
// VantroConfig::GetTransferPartsInFlight at once) each with its SHA-256, streamed from disk.
// The file is read once to hash: the parts' digests and the whole file's come from one pass in
// file order, and each part is released to the senders as soon as its digest is ready. A part
// refused (network failure, 5xx, 409, 422) is sent again under the client's RetryPolicy; when a
// part's budget is spent, the upload asks the service which parts it holds and sends the rest
// (giving up when a round makes no progress). Completion states the whole file's SHA-256;
// parts the service still misses are sent again.
//
//   vantrocommon::Guid transfer;
//   auto done = client->GetTransferManager()->Upload(request, transfer);
//   ...
//   client->GetTransferManager()->UploadCancel(transfer);  // `done` fails with kResultCancelled
#pragma once

#include <memory>

#include <kelcore/async/Future.h>
#include <vantrocommon/Guid.h>
#include <vantrocommon/Response.h>
#include <vantrosdk/UploadRequest.h>
#include <vantrosdk/UploadResponse.h>

namespace vantrosdk {

namespace detail {
class ClientCore;
class TransferRegistry;
}  // namespace detail

class TransferManager {
public:
    /// Made by VantroClient around its core.
    explicit TransferManager(std::shared_ptr<detail::ClientCore> core);
    ~TransferManager();

    /// Any thread. Starts uploading and returns at once, having set `transferID` to the new
    /// transfer's id before anything can answer. The future completes on the SDK's executor:
    ///  - with an UploadResponse holding the completion's status and the new file asset;
    ///  - with an UploadResponse that is not successful when the service refused to create the
    ///    upload (403 storage_limit_exceeded, 404 folder, 409 autoversion_conflict, ...);
    ///  - failed with kResultFileError (the file is missing or unreadable), kResultNotReady (no
    ///    token), kResultCancelled (UploadCancel), or the last failure's code (e.g.
    ///    kResultNetworkFailure) when the parts could not be sent after retries and resumes.
    /// Progress is reported through the request's function: (bytes of parts the service has
    /// acknowledged, file size), never going back, ending with (size, size) before the future
    /// completes; nothing after a cancel. A 0-byte file is one empty part and reports (0, 0).
    kelcore::async::Future<std::shared_ptr<UploadResponse>> Upload(const UploadRequest& request,
                                                                   vantrocommon::Guid& transferID);

    /// Any thread; synchronous. Stops the running upload `transferID`: requests in flight are
    /// cancelled, the upload is deleted at the service (best effort) and its future fails with
    /// kResultCancelled. Fails with kResultInvalidArgument for an id that is unknown or whose
    /// upload has already finished.
    vantrocommon::Response UploadCancel(vantrocommon::Guid transferID);

private:
    std::shared_ptr<detail::ClientCore> core;
    std::shared_ptr<detail::TransferRegistry> registry;
};

}  // namespace vantrosdk
