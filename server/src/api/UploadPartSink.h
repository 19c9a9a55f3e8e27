// Takes the body of one `PUT /v2/uploads/{id}/parts/{n}`: writes it into the upload's data file
// at the part's offset while hashing it, refuses more bytes than the part holds, and at the end
// checks the size and the client's SHA-256 before recording the part. Anything short of that
// records nothing. Made by UploadEndpoints once the header passed; owned by the connection;
// called on its strand.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "api/PartsInFlight.h"
#include "api/WholeFileHashes.h"
#include "api/WritableFile.h"
#include "http/BodySink.h"
#include "security/Sha256Stream.h"
#include "store/Store.h"
#include "store/Upload.h"

namespace vantroserver::api {

class UploadPartSink final : public http::BodySink {
public:
    /// The part must already be marked in `inFlight`; the sink ends that mark when done. A
    /// recorded part is passed on to `hashes` for the whole file's running digest.
    /// Throws std::runtime_error when the data file cannot be opened.
    UploadPartSink(std::shared_ptr<store::Store> store, std::shared_ptr<PartsInFlight> inFlight,
                   std::shared_ptr<WholeFileHashes> hashes, const store::Upload& upload,
                   std::int64_t part, std::string expectedSha256,
                   const std::filesystem::path& dataFile);
    ~UploadPartSink() override;

    std::optional<http::Response> Write(std::span<const char> piece) override;
    http::Response Finish() override;
    void Abort() override;

private:
    void Release();

    std::shared_ptr<store::Store> store;
    std::shared_ptr<PartsInFlight> inFlight;
    std::shared_ptr<WholeFileHashes> hashes;
    std::string uploadId;
    std::int64_t part;
    std::uint64_t offset;
    std::uint64_t expectedSize;
    std::string expectedSha256;
    WritableFile file;
    security::Sha256Stream hash;
    std::uint64_t received = 0;
    bool released = false;
};

}  // namespace vantroserver::api
