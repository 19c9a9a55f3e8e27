#include "api/UploadEndpoints.h"

#include <boost/json/array.hpp>
#include <charconv>

#include "api/JsonViews.h"
#include "api/UploadPartSink.h"
#include "api/WritableFile.h"
#include "http/JsonBody.h"
#include "http/RangedFile.h"
#include "http/StaticFiles.h"
#include "security/Random.h"
#include "security/Sha256Stream.h"
#include "store/StoreError.h"

namespace vantroserver::api {

namespace {

using boost::beast::http::status;
using boost::beast::http::verb;
using http::Response;

/// A JSON number that is a whole, non-negative 64-bit value.
std::optional<std::int64_t> NonNegativeInteger(const boost::json::value& value) {
    if (value.is_int64() && value.get_int64() >= 0) {
        return value.get_int64();
    }
    if (value.is_uint64() && value.get_uint64() <= static_cast<std::uint64_t>(
                                                       std::numeric_limits<std::int64_t>::max())) {
        return static_cast<std::int64_t>(value.get_uint64());
    }
    return std::nullopt;
}

/// What a completion answers: the file, and its stack when versioned.
boost::json::object CompletedView(const store::CompletedUpload& completed) {
    auto view = JsonViews::Of(completed.file);
    if (!completed.versionStackId.empty()) {
        view["version_stack_id"] = completed.versionStackId;
    }
    return view;
}

boost::json::object UploadView(const store::Upload& upload) {
    boost::json::object object{{"upload_id", upload.id},
                               {"name", upload.name},
                               {"folder_id", upload.folderId},
                               {"filesize", upload.filesize},
                               {"part_size", upload.partSize},
                               {"part_count", upload.partCount},
                               {"expires_at", store::FormatIso8601(upload.expiresAt)}};
    if (upload.autoversionId.empty()) {
        object["autoversion_id"] = nullptr;
    } else {
        object["autoversion_id"] = upload.autoversionId;
    }
    return object;
}

}  // namespace

UploadEndpoints::UploadEndpoints(std::shared_ptr<store::Store> store,
                                 const store::DataDirectory& directory,
                                 std::chrono::seconds uploadTtl)
    : store(std::move(store)),
      uploadDirectory(directory.UploadDirectory()),
      mediaDirectory(directory.MediaDirectory()),
      uploadTtl(uploadTtl),
      inFlight(std::make_shared<PartsInFlight>()),
      hashes(std::make_shared<WholeFileHashes>()) {}

void UploadEndpoints::AddRoutes(http::Router& router) {
    auto add = [&](verb method, std::string_view pattern, auto member) {
        router.AddMember(method, pattern, http::Router::Access::Bearer, shared_from_this(), member);
    };
    add(verb::post, "/v2/assets/{id}/uploads", &UploadEndpoints::Create);
    add(verb::get, "/v2/uploads/{id}", &UploadEndpoints::Status);
    add(verb::delete_, "/v2/uploads/{id}", &UploadEndpoints::Abort);
    add(verb::post, "/v2/uploads/{id}/complete", &UploadEndpoints::Complete);
    add(verb::get, "/v2/assets/{id}/content", &UploadEndpoints::Content);
    router.AddStreamed(verb::put, "/v2/uploads/{id}/parts/{part}", http::Router::Access::Bearer,
                       [self = shared_from_this()](http::RequestContext& context) {
                           return self->PutPart(context);
                       });
}

std::filesystem::path UploadEndpoints::DataFile(std::string_view uploadId) const {
    return uploadDirectory / std::string(uploadId);
}

std::optional<store::Upload> UploadEndpoints::OwnUpload(const http::RequestContext& context) const {
    const auto id = context.Param("id");
    if (!security::IsWellFormedId(id)) {
        return std::nullopt;
    }
    auto upload = store->Uploads().Find(id);
    if (!upload || upload->userId != context.User().userId) {
        return std::nullopt;
    }
    return upload;
}

Response UploadEndpoints::Create(const http::RequestContext& context) const {
    const auto folderId = context.Param("id");
    const auto& userId = context.User().userId;
    if (!security::IsWellFormedId(folderId) || !store->Access().CanSeeAsset(userId, folderId)) {
        return Response::NotFound();
    }
    std::string error;
    const auto body = http::JsonBody::ParseObject(context, error);
    if (!body) {
        return Response::BadRequest(error);
    }
    store::UploadStore::NewUpload request;
    request.userId = userId;
    request.folderId = std::string(folderId);
    for (const auto& member : *body) {
        const auto& value = member.value();
        if (member.key() == "name") {
            if (!value.is_string()) {
                return Response::BadRequest("name must be a string");
            }
            request.name = std::string(value.get_string());
        } else if (member.key() == "filesize") {
            const auto size = NonNegativeInteger(value);
            if (!size) {
                return Response::BadRequest("filesize must be a whole number of bytes, 0 or more");
            }
            request.filesize = *size;
        } else if (member.key() == "part_size") {
            const auto size = NonNegativeInteger(value);
            if (!size) {
                return Response::BadRequest("part_size must be a whole number of bytes");
            }
            request.partSize = *size;
        } else if (member.key() == "autoversion_id") {
            if (!value.is_string() && !value.is_null()) {
                return Response::BadRequest("autoversion_id must be a string");
            }
            if (value.is_string()) {
                request.autoversionId = std::string(value.get_string());
            }
        } else {
            return Response::BadRequest("unknown member " + std::string(member.key()));
        }
    }
    if (!body->contains("name") || !body->contains("filesize")) {
        return Response::BadRequest("name and filesize are required");
    }
    // An existing asset under that id must be one the user sees; its kind is the store's check.
    if (!request.autoversionId.empty() && security::IsWellFormedId(request.autoversionId) &&
        store->Assets().Find(request.autoversionId) &&
        !store->Access().CanSeeAsset(userId, request.autoversionId)) {
        return Response::NotFound();
    }
    store::Upload upload;
    try {
        upload = store->Uploads().Create(request, uploadTtl);
    } catch (const store::StoreError& refused) {
        switch (refused.GetKind()) {
            case store::StoreError::Kind::NotFound:
                return Response::NotFound();
            case store::StoreError::Kind::Invalid:
                return Response::BadRequest(refused.what());
            case store::StoreError::Kind::Conflict:
                return Response::Error(status::conflict, "autoversion_conflict", refused.what());
            case store::StoreError::Kind::StorageLimit:
                return Response::Error(status::forbidden, "storage_limit_exceeded", refused.what());
            case store::StoreError::Kind::Database:
                throw;
        }
        throw;
    }
    try {
        // Sized up front (sparse), so parts can land at their offsets in any order.
        WritableFile::Open(DataFile(upload.id), true)
            .Resize(static_cast<std::uint64_t>(upload.filesize));
    } catch (...) {
        store->Uploads().Remove(upload.id);
        throw;
    }
    hashes->Begin(upload, DataFile(upload.id));
    return Response::Json(status::created, UploadView(upload));
}

http::Router::StreamStart UploadEndpoints::PutPart(const http::RequestContext& context) const {
    const auto upload = OwnUpload(context);
    if (!upload) {
        return Response::NotFound();
    }
    const auto partText = context.Param("part");
    std::int64_t part = 0;
    const auto [end, parseError] =
        std::from_chars(partText.data(), partText.data() + partText.size(), part);
    if (parseError != std::errc() || end != partText.data() + partText.size() || part < 1 ||
        part > upload->partCount) {
        return Response::BadRequest("the part number must be from 1 to " +
                                    std::to_string(upload->partCount));
    }
    const auto& request = context.Request();
    const auto checksum = request.find("X-Content-SHA256");
    if (checksum == request.end() || !security::Sha256Stream::IsHexDigest(checksum->value())) {
        return Response::BadRequest(
            "X-Content-SHA256 must give the part's SHA-256 as 64 hex digits");
    }
    const auto expected = static_cast<std::uint64_t>(upload->SizeOfPart(part));
    const auto length = request.find(boost::beast::http::field::content_length);
    if (length != request.end()) {
        std::uint64_t declared = 0;
        const std::string_view text = length->value();
        std::from_chars(text.data(), text.data() + text.size(), declared);
        if (declared > expected) {
            return Response::Error(
                status::payload_too_large, "request_too_large",
                "part " + std::to_string(part) + " holds " + std::to_string(expected) + " bytes");
        }
        if (declared < expected) {
            return Response::BadRequest("part " + std::to_string(part) + " holds " +
                                        std::to_string(expected) + " bytes, not " +
                                        std::to_string(declared));
        }
    }
    if (!inFlight->TryBegin(upload->id, part)) {
        return Response::Error(status::conflict, "part_in_progress",
                               "part " + std::to_string(part) + " is being sent already");
    }
    try {
        // Its bytes are about to be overwritten: until this body checks out, it is missing.
        hashes->PartStarting(upload->id, part);
        store->Uploads().ForgetPart(upload->id, part);
        return std::make_shared<UploadPartSink>(store, inFlight, hashes, *upload, part,
                                                std::string(checksum->value()),
                                                DataFile(upload->id));
    } catch (...) {
        inFlight->End(upload->id, part);
        throw;
    }
}

Response UploadEndpoints::Status(const http::RequestContext& context) const {
    const auto upload = OwnUpload(context);
    if (!upload) {
        return Response::NotFound();
    }
    boost::json::array parts;
    for (const auto& part : store->Uploads().Parts(upload->id)) {
        parts.push_back(boost::json::object{
            {"part", part.number}, {"size", part.size}, {"sha256", part.sha256}});
    }
    auto view = UploadView(*upload);
    view["parts"] = std::move(parts);
    return Response::Json(status::ok, view);
}

Response UploadEndpoints::Complete(const http::RequestContext& context) const {
    const auto upload = OwnUpload(context);
    std::string error;
    const auto body = http::JsonBody::ParseObject(context, error);
    const auto* sha256 = body ? body->if_contains("sha256") : nullptr;
    const bool digestGiven =
        sha256 && sha256->is_string() && security::Sha256Stream::IsHexDigest(sha256->get_string());
    if (!upload) {
        // Asked again after a completion whose answer was lost: the same answer.
        if (digestGiven) {
            const auto earlier = store->Uploads().FindCompleted(
                context.Param("id"), context.User().userId,
                security::Sha256Stream::NormalizeHexDigest(sha256->get_string()));
            if (earlier) {
                return Response::Json(status::created, CompletedView(*earlier));
            }
        }
        return Response::NotFound();
    }
    if (!body) {
        return Response::BadRequest(error);
    }
    if (!digestGiven) {
        return Response::BadRequest("sha256 must give the whole file's SHA-256 as 64 hex digits");
    }
    if (inFlight->Any(upload->id)) {
        return Response::Error(status::conflict, "part_in_progress",
                               "parts of this upload are still being sent");
    }
    const auto parts = store->Uploads().Parts(upload->id);
    boost::json::array missing;
    std::size_t next = 0;
    for (std::int64_t number = 1; number <= upload->partCount; ++number) {
        if (next < parts.size() && parts[next].number == number) {
            ++next;
        } else {
            missing.push_back(number);
        }
    }
    if (!missing.empty()) {
        return Response::Json(
            status::conflict,
            boost::json::object{{"error", "upload_incomplete"},
                                {"error_description", std::to_string(missing.size()) + " of " +
                                                          std::to_string(upload->partCount) +
                                                          " parts have not arrived"},
                                {"missing_parts", std::move(missing)}});
    }
    const auto dataFile = DataFile(upload->id);
    std::error_code sizeError;
    const auto onDisk = std::filesystem::file_size(dataFile, sizeError);
    if (sizeError || onDisk != static_cast<std::uintmax_t>(upload->filesize)) {
        return Response::Error(status::unprocessable_entity, "checksum_mismatch",
                               "the received bytes do not add up to the file's size");
    }
    // Mostly folded in already while the parts arrived; this hashes what is left.
    const std::string actual = hashes->Finish(*upload, dataFile);
    if (actual != security::Sha256Stream::NormalizeHexDigest(sha256->get_string())) {
        return Response::Error(status::unprocessable_entity, "checksum_mismatch",
                               "the file's SHA-256 is " + actual + ", not the one given");
    }
    if (!upload->autoversionId.empty() && store->Assets().Find(upload->autoversionId) &&
        !store->Access().CanSeeAsset(context.User().userId, upload->autoversionId)) {
        return Response::NotFound();
    }
    store::CompletedUpload completed;
    try {
        completed = store->Uploads().Complete(upload->id, actual, [&](const store::Asset& file) {
            std::filesystem::rename(dataFile, mediaDirectory / file.id);
        });
    } catch (const store::StoreError& refused) {
        switch (refused.GetKind()) {
            case store::StoreError::Kind::NotFound:
                return Response::NotFound();
            case store::StoreError::Kind::Invalid:
                return Response::Error(status::conflict, "upload_incomplete", refused.what());
            case store::StoreError::Kind::Conflict:
                return Response::Error(status::conflict, "autoversion_conflict", refused.what());
            case store::StoreError::Kind::StorageLimit:
                return Response::Error(status::forbidden, "storage_limit_exceeded", refused.what());
            case store::StoreError::Kind::Database:
                throw;
        }
        throw;
    }
    return Response::Json(status::created, CompletedView(completed));
}

Response UploadEndpoints::Abort(const http::RequestContext& context) const {
    const auto upload = OwnUpload(context);
    if (!upload) {
        return Response::NotFound();
    }
    store->Uploads().Remove(upload->id);
    hashes->Drop(upload->id);
    std::error_code ignored;
    std::filesystem::remove(DataFile(upload->id), ignored);
    return Response::NoContent();
}

Response UploadEndpoints::Content(const http::RequestContext& context) const {
    const auto id = context.Param("id");
    if (!security::IsWellFormedId(id) || !store->Access().CanSeeAsset(context.User().userId, id)) {
        return Response::NotFound();
    }
    const auto asset = store->Assets().Find(id);
    if (!asset || asset->type != store::AssetType::File) {
        return Response::NotFound();
    }
    http::RangedFile::Options options;
    options.contentType = http::StaticFiles::ContentType(asset->name);
    // A file asset's bytes never change, so its id is a strong validator for them.
    options.etag = "\"" + asset->id + "\"";
    options.cacheControl = "private, max-age=31536000, immutable";
    return http::RangedFile::Serve(context, mediaDirectory / asset->id, options);
}

std::size_t UploadEndpoints::SweepExpired() const {
    const auto expired = store->Uploads().RemoveExpired();
    for (const auto& id : expired) {
        hashes->Drop(id);
        std::error_code ignored;
        std::filesystem::remove(DataFile(id), ignored);
    }
    return expired.size();
}

}  // namespace vantroserver::api
