// The outcome of TransferManager::Upload that reached an answer: the status and header fields of
// the completion (or of the refused creation of the upload) and, when successful, the new file
// asset with its id (and its version when it joined a version stack). Made by the SDK on its
// executor; immutable afterwards, any thread.
#pragma once

#include <utility>

#include <vantrocommon/http/HeaderMap.h>
#include <vantrosdk/Asset.h>
#include <vantrosdk/VantroResponse.h>

namespace vantrosdk {

class UploadResponse : public VantroResponse {
public:
    UploadResponse() = default;
    UploadResponse(int httpStatusCode, vantrocommon::http::HeaderMap header, Asset asset)
        : VantroResponse(httpStatusCode, std::move(header)), asset(std::move(asset)) {}

    /// The file asset; empty fields when the upload was refused.
    const Asset& GetAssetObject() const { return asset; }

private:
    Asset asset;
};

}  // namespace vantrosdk
