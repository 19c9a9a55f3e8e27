#include "api/UploadPartSink.h"

#include <boost/json/object.hpp>

#include "store/StoreError.h"

namespace vantroserver::api {

namespace {

using boost::beast::http::status;
using http::Response;

}  // namespace

UploadPartSink::UploadPartSink(std::shared_ptr<store::Store> store,
                               std::shared_ptr<PartsInFlight> inFlight,
                               std::shared_ptr<WholeFileHashes> hashes, const store::Upload& upload,
                               std::int64_t part, std::string expectedSha256,
                               const std::filesystem::path& dataFile)
    : store(std::move(store)),
      inFlight(std::move(inFlight)),
      hashes(std::move(hashes)),
      uploadId(upload.id),
      part(part),
      offset(static_cast<std::uint64_t>(upload.OffsetOfPart(part))),
      expectedSize(static_cast<std::uint64_t>(upload.SizeOfPart(part))),
      expectedSha256(security::Sha256Stream::NormalizeHexDigest(expectedSha256)),
      file(WritableFile::Open(dataFile, false)) {}

UploadPartSink::~UploadPartSink() {
    Release();
}

void UploadPartSink::Release() {
    if (!released) {
        released = true;
        inFlight->End(uploadId, part);
    }
}

std::optional<Response> UploadPartSink::Write(std::span<const char> piece) {
    if (piece.size() > expectedSize - received) {
        Release();
        return Response::Error(status::payload_too_large, "request_too_large",
                               "part " + std::to_string(part) + " holds " +
                                   std::to_string(expectedSize) + " bytes; more were sent");
    }
    file.WriteAt(piece, offset + received);
    hash.Update(piece);
    received += piece.size();
    return std::nullopt;
}

Response UploadPartSink::Finish() {
    // The part stays marked in flight until it is recorded, so that a second PUT of it cannot
    // begin overwriting its bytes before the record (and the running digest) sees them.
    if (received != expectedSize) {
        Release();
        return Response::Error(status::bad_request, "invalid_request",
                               "part " + std::to_string(part) + " holds " +
                                   std::to_string(expectedSize) + " bytes; " +
                                   std::to_string(received) + " were sent");
    }
    const std::string actual = hash.FinishHex();
    if (actual != expectedSha256) {
        Release();
        return Response::Error(
            status::unprocessable_entity, "checksum_mismatch",
            "the part's SHA-256 is " + actual + ", not the one in X-Content-SHA256");
    }
    try {
        store->Uploads().RecordPart(uploadId, part, static_cast<std::int64_t>(received), actual);
    } catch (const store::StoreError& refused) {
        Release();
        if (refused.GetKind() == store::StoreError::Kind::Database) {
            throw;
        }
        return Response::Error(status::not_found, "not_found", "no such upload");
    }
    hashes->PartRecorded(uploadId, part);
    Release();
    return Response::Json(
        status::ok, boost::json::object{{"part", part}, {"size", received}, {"sha256", actual}});
}

void UploadPartSink::Abort() {
    Release();
}

}  // namespace vantroserver::api
